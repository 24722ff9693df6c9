#include "KvCmDrv1/ports/SerialPort.h"

#include <cstdint>
#include <utility>

#include "KvCmDrv1/ports/FramingText.h"
#include "KvCmDrv1/ports/PortErrors.h"

namespace kv {

SerialPort::SerialPort(std::string port, int baudRate, const SerialFraming& framing, Pacer& pacer)
    : mPort(std::move(port)), mBaudRate(baudRate), mFraming(framing), mPacer(pacer) {}

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
  if (result == Result::Nothing) mPacer.Turn();
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
  return mPort + ", " + std::to_string(mBaudRate) + " " + FramingText(mFraming);
}

int SerialPort::CommPort() const {
  return SerialPortNumber(mPort);
}

}  // namespace kv
