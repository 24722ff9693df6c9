#pragma once

#include <memory>
#include <string>

#include "KvCmDrv1/ports/Port.h"
#include "base/InProcessLine.h"
#include "desktop/Pacer.h"

namespace kv {

// The port to a simulated controller in this process. It waits on the pacer's clock, so with a virtual pacer hours on
// the line take no time. The line is shared with its maker: the controller keeps what it holds when the port is closed.
class SimulatedPort final : public Port {
 public:
  // Without a line every Open fails: there is no simulated controller of this model.
  SimulatedPort(std::shared_ptr<InProcessLine> line, std::string model, Pacer& pacer);
  ~SimulatedPort() override;

  [[nodiscard]] std::expected<void, PortError> Open(Duration limit) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return mIsOpen; }
  [[nodiscard]] Result Write(std::string_view& bytes, Duration slice) override;
  [[nodiscard]] Result Read(std::string& buffer, Duration slice) override;
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override { return mByteTime; }
  // Also while closed. A simulated link has no speed, so only who plays a serial line with this port sets one.
  [[nodiscard]] bool SetBaudRate(int baudRate) override;
  [[nodiscard]] std::string Description() const override { return "Simulated " + mModel; }

 private:
  [[nodiscard]] Result Lose();

  std::shared_ptr<InProcessLine> mLine;
  std::string mModel;
  Pacer& mPacer;
  bool mIsOpen = false;
  Duration mByteTime{};
  PortError mLoss;
};

}  // namespace kv
