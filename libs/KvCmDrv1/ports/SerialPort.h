#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/Port.h"
#include "KvCmDrv1/ports/SerialLine.h"

namespace kv {

// The number in "COM3", "/dev/ttyS3" or a name of these; 0 in other names.
[[nodiscard]] int SerialPortNumber(std::string_view port);

// A serial line: a UART, a USB adapter or a pseudo terminal. It is opened for this program alone.
class SerialPort final : public Port {
 public:
  // `port`: "COM3", "/dev/ttyUSB0".
  SerialPort(std::string port, int baudRate, const SerialFraming& framing);

  [[nodiscard]] std::expected<void, PortError> Open(Duration limit) override;
  void Close() override { mLine.reset(); }
  [[nodiscard]] bool IsOpen() const override { return mLine != nullptr; }
  [[nodiscard]] Result Write(std::string_view& bytes, Duration slice) override;
  [[nodiscard]] Result Read(std::string& buffer, Duration slice) override;
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override;
  // A rate set while the port is open is also that of its next opening.
  [[nodiscard]] bool SetBaudRate(int baudRate) override;
  [[nodiscard]] std::string Description() const override;
  [[nodiscard]] int CommPort() const override;

 private:
  [[nodiscard]] Result Handle(Result result);

  std::string mPort;
  int mBaudRate;
  SerialFraming mFraming;
  std::unique_ptr<SerialLine> mLine;  // null while closed or lost
  PortError mLoss;
};

}  // namespace kv
