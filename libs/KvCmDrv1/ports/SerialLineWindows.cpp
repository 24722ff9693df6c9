#ifdef _WIN32

#include <windows.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

#include "KvCmDrv1/ports/PortErrors.h"
#include "KvCmDrv1/ports/SerialLine.h"
#include "base/PathText.h"

namespace kv {
namespace {

constexpr DWORD kLongestAsk = 100;  // milliseconds for bytes that have arrived already

std::error_code CodeOf(DWORD error) {
  return {static_cast<int>(error), std::system_category()};
}

SerialFault FaultOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_DEV_NOT_EXIST:
      return SerialFault::Missing;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return SerialFault::InUse;  // the system's own way to say so
    case ERROR_INVALID_FUNCTION:
    case ERROR_INVALID_PARAMETER:
      return SerialFault::NotSerial;
    default:
      return SerialFault::Other;
  }
}

// Ports from COM10 on are found by this form of the name alone.
std::wstring DeviceName(const std::string& port) {
  return PathFromUtf8(port.starts_with("\\\\") ? port : "\\\\.\\" + port).wstring();
}

DWORD WholeMilliseconds(Duration span) {
  return static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(std::max(span, Duration::zero())).count());
}

// Raw bytes, no flow control; a damaged character is a byte like any other.
void SetFraming(DCB& settings, const SerialFraming& framing) {
  settings.fBinary = TRUE;
  settings.fParity = framing.parity != Parity::None;
  settings.fOutxCtsFlow = FALSE;
  settings.fOutxDsrFlow = FALSE;
  settings.fDtrControl = DTR_CONTROL_ENABLE;  // some adapters are fed by it
  settings.fDsrSensitivity = FALSE;
  settings.fOutX = FALSE;
  settings.fInX = FALSE;
  settings.fErrorChar = FALSE;
  settings.fNull = FALSE;
  settings.fRtsControl = RTS_CONTROL_ENABLE;
  settings.fAbortOnError = FALSE;
  settings.ByteSize = static_cast<BYTE>(framing.dataBits);
  settings.Parity = framing.parity == Parity::Even ? EVENPARITY : framing.parity == Parity::Odd ? ODDPARITY : NOPARITY;
  settings.StopBits = framing.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
}

bool HasFraming(const DCB& settings, const SerialFraming& framing) {
  DCB wanted = settings;
  SetFraming(wanted, framing);
  return settings.ByteSize == wanted.ByteSize && settings.Parity == wanted.Parity &&
         settings.StopBits == wanted.StopBits;
}

bool SetSpeed(HANDLE line, DWORD baudRate) {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  if (!GetCommState(line, &settings)) return false;
  settings.BaudRate = baudRate;
  return SetCommState(line, &settings) && GetCommState(line, &settings) && settings.BaudRate == baudRate;
}

// What the line does not take, or nothing.
std::optional<SerialFault> SetUp(HANDLE line, DWORD baudRate, const SerialFraming& framing) {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  if (!GetCommState(line, &settings)) return SerialFault::NotSerial;
  SetFraming(settings, framing);
  if (!SetCommState(line, &settings) || !GetCommState(line, &settings) || !HasFraming(settings, framing)) {
    return SerialFault::BadFraming;
  }
  if (!SetSpeed(line, baudRate)) return SerialFault::BadSpeed;
  COMMTIMEOUTS none{};  // what is asked for is waited for; how long is decided here
  SetCommTimeouts(line, &none);
  PurgeComm(line, PURGE_RXCLEAR | PURGE_TXCLEAR);
  return std::nullopt;
}

// One call to the line that goes on while the program does something else. What it works on must stay until it has
// ended, so the end of this object cancels it and waits for that.
class Call {
 public:
  explicit Call(HANDLE line) : mLine(line) { mState.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr); }
  ~Call() {
    Cancel();
    CloseHandle(mState.hEvent);
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  [[nodiscard]] bool IsUnderWay() const { return mIsUnderWay; }

  // False, with the reason in Error(), when the line does not take the call.
  [[nodiscard]] bool BeginRead(char* bytes, std::size_t size) {
    return Begin(ReadFile(mLine, bytes, static_cast<DWORD>(size), nullptr, &mState));
  }
  [[nodiscard]] bool BeginWrite(std::string_view bytes) {
    return Begin(WriteFile(mLine, bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &mState));
  }
  // Whether it ended within the time; then how many bytes it moved, nothing after a failure.
  enum class State { UnderWay, Done, Failed };
  [[nodiscard]] State Wait(DWORD milliseconds, DWORD& count) {
    if (WaitForSingleObject(mState.hEvent, milliseconds) != WAIT_OBJECT_0) return State::UnderWay;
    return Finish(count);
  }
  DWORD Cancel() {
    DWORD count = 0;
    if (!mIsUnderWay) return count;
    CancelIoEx(mLine, &mState);
    (void)Finish(count);
    return count;
  }
  [[nodiscard]] DWORD Error() const { return mError; }

 private:
  [[nodiscard]] bool Begin(BOOL isDone) {
    mError = isDone ? ERROR_SUCCESS : GetLastError();
    mIsUnderWay = isDone || mError == ERROR_IO_PENDING;
    return mIsUnderWay;
  }
  [[nodiscard]] State Finish(DWORD& count) {
    mIsUnderWay = false;
    if (GetOverlappedResult(mLine, &mState, &count, TRUE)) return State::Done;
    mError = GetLastError();
    return State::Failed;
  }

  HANDLE mLine;
  OVERLAPPED mState{};
  bool mIsUnderWay = false;
  DWORD mError = ERROR_SUCCESS;
};

class Handle {
 public:
  explicit Handle(HANDLE handle) : mHandle(handle) {}
  ~Handle() {
    if (IsOpen()) CloseHandle(mHandle);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  [[nodiscard]] HANDLE Get() const { return mHandle; }
  [[nodiscard]] bool IsOpen() const { return mHandle != INVALID_HANDLE_VALUE; }

 private:
  HANDLE mHandle;
};

}  // namespace

// A read of one byte is always under way, and stays so from slice to slice: no byte is lost to a read that is given up.
// What has arrived behind that byte is asked for by its number. A write stays under way in the same manner; its bytes
// are kept here until the line has taken them.
struct SerialLine::System {
  explicit System(const std::string& port)
      : line(CreateFileW(DeviceName(port).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                         FILE_FLAG_OVERLAPPED, nullptr)) {}

  Handle line;
  DWORD openError = line.IsOpen() ? ERROR_SUCCESS : GetLastError();  // before another call has one
  char first = 0;
  std::string outgoing;
  Call reading{line.Get()};
  Call writing{line.Get()};
  std::error_code lossCode;

  Port::Result Lose(DWORD error) {
    lossCode = CodeOf(error);
    return Port::Result::Lost;
  }
  [[nodiscard]] bool StartReading() { return reading.BeginRead(&first, 1); }

  // What waits behind the first byte.
  void TakeWaiting(std::string& buffer) {
    COMSTAT facts{};
    DWORD ignored = 0;
    if (!ClearCommError(line.Get(), &ignored, &facts) || facts.cbInQue == 0) return;
    const std::size_t before = buffer.size();
    buffer.resize(before + facts.cbInQue);
    DWORD count = 0;
    Call rest(line.Get());
    if (rest.BeginRead(buffer.data() + before, facts.cbInQue) &&
        rest.Wait(kLongestAsk, count) == Call::State::UnderWay) {
      count = rest.Cancel();
    }
    buffer.resize(before + count);
  }
};

std::expected<std::unique_ptr<SerialLine>, PortError> SerialLine::Open(const std::string& port, int baudRate,
                                                                       const SerialFraming& framing) {
  auto system = std::make_unique<System>(port);
  if (!system->line.IsOpen()) {
    const DWORD error = system->openError;
    return std::unexpected(SerialOpenError(port, FaultOf(error), CodeOf(error), {}));
  }
  if (const auto fault = SetUp(system->line.Get(), static_cast<DWORD>(baudRate), framing)) {
    return std::unexpected(SerialOpenError(port, *fault, {}, {}));
  }
  if (!system->StartReading()) {
    const DWORD error = system->reading.Error();
    return std::unexpected(SerialOpenError(port, FaultOf(error), CodeOf(error), {}));
  }
  return std::unique_ptr<SerialLine>(new SerialLine(std::move(system)));
}

SerialLine::SerialLine(std::unique_ptr<System> system) : mSystem(std::move(system)) {}
SerialLine::~SerialLine() = default;

Port::Result SerialLine::Write(std::string_view& bytes, Duration slice) {
  constexpr std::size_t kMostAtOnce = 4096;
  if (mSystem->lossCode) return Port::Result::Lost;
  if (bytes.empty()) return Port::Result::Done;
  Call& writing = mSystem->writing;
  DWORD count = 0;
  if (writing.IsUnderWay()) {
    const auto state = writing.Wait(WholeMilliseconds(slice), count);
    if (state == Call::State::UnderWay) return Port::Result::Nothing;
    if (state == Call::State::Failed) return mSystem->Lose(writing.Error());
  }
  mSystem->outgoing = bytes.substr(0, kMostAtOnce);
  if (!writing.BeginWrite(mSystem->outgoing)) return mSystem->Lose(writing.Error());
  bytes.remove_prefix(mSystem->outgoing.size());
  return Port::Result::Done;
}

Port::Result SerialLine::Read(std::string& buffer, Duration slice) {
  if (mSystem->lossCode) return Port::Result::Lost;
  DWORD count = 0;
  const auto state = mSystem->reading.Wait(WholeMilliseconds(slice), count);
  if (state == Call::State::UnderWay) return Port::Result::Nothing;
  if (state == Call::State::Failed) return mSystem->Lose(mSystem->reading.Error());
  if (count > 0) {
    buffer += mSystem->first;
    mSystem->TakeWaiting(buffer);
  }
  // When the line is gone, the next call tells: these bytes came before.
  if (!mSystem->StartReading()) mSystem->lossCode = CodeOf(mSystem->reading.Error());
  return count > 0 ? Port::Result::Done : Port::Result::Nothing;
}

bool SerialLine::SetBaudRate(int baudRate) {
  return SetSpeed(mSystem->line.Get(), static_cast<DWORD>(baudRate));
}

std::error_code SerialLine::LossCode() const {
  return mSystem->lossCode;
}

}  // namespace kv

#endif
