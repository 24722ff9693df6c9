#pragma once

#include <cstdint>
#include <string>

#include "KvCmDrv1/ports/ConnectedSocket.h"
#include "KvCmDrv1/ports/Port.h"
#include "desktop/Pacer.h"

namespace kv {

// A TCP connection to a controller that listens, or to a gateway with a controller behind it.
class TcpPort final : public Port {
 public:
  // `host`: a name or an address. `pacer` must outlive the port.
  TcpPort(std::string host, std::uint16_t port, Pacer& pacer);

  [[nodiscard]] std::expected<void, PortError> Open(Duration limit) override;
  void Close() override { mSocket.Close(); }
  [[nodiscard]] bool IsOpen() const override { return mSocket.IsOpen(); }
  [[nodiscard]] Result Write(std::string_view& bytes, Duration slice) override;
  [[nodiscard]] Result Read(std::string& buffer, Duration slice) override;
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override { return Duration::zero(); }
  [[nodiscard]] bool SetBaudRate(int) override { return false; }
  [[nodiscard]] std::string Description() const override;

 private:
  [[nodiscard]] Result Handle(Result result);

  std::string mHost;
  std::uint16_t mPort;
  Pacer& mPacer;
  ConnectedSocket mSocket;
  PortError mLoss;
};

}  // namespace kv
