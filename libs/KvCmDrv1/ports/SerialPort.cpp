#include "KvCmDrv1/ports/SerialPort.h"

#include <cstdint>
#include <utility>

#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/ports/PortErrors.h"
#include "base/Numbers.h"

namespace kv {
namespace {

bool StartsWithLetters(std::string_view text, std::string_view upperCase) {
  if (text.size() < upperCase.size()) return false;
  for (std::size_t i = 0; i < upperCase.size(); ++i) {
    const char letter = text[i] >= 'a' && text[i] <= 'z' ? static_cast<char>(text[i] - 'a' + 'A') : text[i];
    if (letter != upperCase[i]) return false;
  }
  return true;
}

// Start bit, data, parity, stop.
int BitsOnWire(const SerialFraming& framing) {
  return 1 + framing.dataBits + (framing.parity == Parity::None ? 0 : 1) + framing.stopBits;
}

}  // namespace

int SerialPortNumber(std::string_view port) {
  const std::string_view name = port.substr(port.find_last_of("/\\") + 1);
  const std::size_t letters = StartsWithLetters(name, "COM") ? 3 : name.starts_with("ttyS") ? 4 : name.size();
  const auto number = ParseInteger(name.substr(letters));
  return number && *number > 0 && *number <= 65535 ? static_cast<int>(*number) : 0;
}

SerialPort::SerialPort(std::string port, int baudRate, const SerialFraming& framing)
    : mPort(std::move(port)), mBaudRate(baudRate), mFraming(framing) {}

// A serial line opens at once or not at all.
std::expected<void, PortError> SerialPort::Open(Duration) {
  Close();
  mLoss = {};
  auto line = SerialLine::Open(mPort, mBaudRate, mFraming);
  if (!line) return std::unexpected(line.error());
  mLine = std::move(*line);
  return {};
}

Port::Result SerialPort::Write(std::string_view& bytes, Duration slice) {
  return mLine ? Handle(mLine->Write(bytes, slice)) : Result::Lost;
}

Port::Result SerialPort::Read(std::string& buffer, Duration slice) {
  return mLine ? Handle(mLine->Read(buffer, slice)) : Result::Lost;
}

Port::Result SerialPort::Handle(Result result) {
  if (result == Result::Lost) {
    mLoss = SerialLossError(mPort, mLine->LossCode());
    mLine.reset();
  }
  return result;
}

Duration SerialPort::ByteTime() const {
  if (mBaudRate <= 0) return Duration::zero();
  constexpr std::int64_t kMicroseconds = 1'000'000;
  return Duration((BitsOnWire(mFraming) * kMicroseconds + mBaudRate - 1) / mBaudRate);
}

bool SerialPort::SetBaudRate(int baudRate) {
  if (baudRate <= 0 || !mLine || !mLine->SetBaudRate(baudRate)) return false;
  mBaudRate = baudRate;
  return true;
}

std::string SerialPort::Description() const {
  return mPort + ", " + std::to_string(mBaudRate) + " " + PrintFraming(mFraming);
}

int SerialPort::CommPort() const {
  return SerialPortNumber(mPort);
}

}  // namespace kv
