#ifdef _WIN32

#include <array>
#include <asio.hpp>
#include <exception>
#include <utility>

#include "KvCmDrv1/ports/SerialLine.h"
#include "KvCmDrv1/ports/SerialSettings.h"

namespace kv {
namespace {

constexpr std::size_t kReadSize = 4096;
constexpr DWORD kWriteLimit = 100;  // milliseconds until a write returns with what the line took

SerialFault FaultOf(std::error_code code) {
  switch (code.value()) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
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

// A write that the line does not take ends by itself, so that one slice cannot last for ever.
void LimitWrites(HANDLE line) {
  COMMTIMEOUTS timeouts{};
  if (!GetCommTimeouts(line, &timeouts)) return;
  timeouts.WriteTotalTimeoutConstant = kWriteLimit;
  SetCommTimeouts(line, &timeouts);
}

std::string DeviceName(const std::string& port) {
  return port.starts_with("\\\\") ? port : "\\\\.\\" + port;
}

}  // namespace

// One read is always under way; its bytes wait here until Read() takes them, so no byte is lost to a cancelled read.
struct SerialLine::System {
  asio::io_context context;
  asio::serial_port line{context};
  std::array<char, kReadSize> chunk{};
  std::string received;
  std::error_code lossCode;
  bool isLost = false;

  void StartReading() {
    line.async_read_some(asio::buffer(chunk), [this](const std::error_code& code, std::size_t count) {
      received.append(chunk.data(), count);
      if (code) {
        lossCode = code;
        isLost = true;
      } else {
        StartReading();
      }
    });
  }

  void RunOne(Duration slice) {
    context.restart();
    context.run_one_for(slice);
  }
};

std::expected<std::unique_ptr<SerialLine>, PortError> SerialLine::Open(const std::string& port, int baudRate,
                                                                       const SerialFraming& framing) {
  try {
    auto system = std::make_unique<System>();
    std::error_code code;
    system->line.open(DeviceName(port), code);
    if (code) return std::unexpected(SerialOpenError(port, FaultOf(code), code, {}));
    if (const auto fault = SetUpLine(system->line, baudRate, framing)) {
      return std::unexpected(SerialOpenError(port, *fault, {}, {}));
    }
    LimitWrites(system->line.native_handle());
    PurgeComm(system->line.native_handle(), PURGE_RXCLEAR | PURGE_TXCLEAR);
    system->StartReading();
    return std::unique_ptr<SerialLine>(new SerialLine(std::move(system)));
  } catch (const std::system_error& error) {
    return std::unexpected(SerialOpenError(port, SerialFault::Other, error.code(), {}));
  }
}

SerialLine::SerialLine(std::unique_ptr<System> system) : mSystem(std::move(system)) {}
SerialLine::~SerialLine() = default;

Port::Result SerialLine::Write(std::string_view& bytes, Duration) {
  if (mSystem->isLost) return Port::Result::Lost;
  if (bytes.empty()) return Port::Result::Done;
  std::error_code code;
  const std::size_t sent = mSystem->line.write_some(asio::buffer(bytes.data(), bytes.size()), code);
  bytes.remove_prefix(sent);
  if (code) {
    mSystem->lossCode = code;
    mSystem->isLost = true;
    return Port::Result::Lost;
  }
  return sent > 0 ? Port::Result::Done : Port::Result::Nothing;
}

Port::Result SerialLine::Read(std::string& buffer, Duration slice) {
  if (mSystem->received.empty() && !mSystem->isLost) mSystem->RunOne(slice);
  if (!mSystem->received.empty()) {
    buffer += std::exchange(mSystem->received, {});
    return Port::Result::Done;
  }
  return mSystem->isLost ? Port::Result::Lost : Port::Result::Nothing;
}

bool SerialLine::SetBaudRate(int baudRate) {
  std::error_code code;
  mSystem->line.set_option(asio::serial_port_base::baud_rate(static_cast<unsigned>(baudRate)), code);
  return !code;
}

std::error_code SerialLine::LossCode() const {
  return mSystem->lossCode;
}

}  // namespace kv

#endif
