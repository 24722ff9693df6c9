#pragma once

#include <cstdint>
#include <string>

#include "KvCmDrv1/ports/ListeningSocketImpl.h"
#include "KvCmDrv1/ports/Port.h"
#include "desktop/Pacer.h"

namespace kv {

// A connection that the controller makes to this machine. The socket is the program's, which may answer its events;
// where nobody answers a request, the port accepts it.
class ListeningPort final : public Port {
 public:
  // `port`: where to listen. `socket` and `pacer` must outlive this port.
  ListeningPort(ListeningSocketImpl& socket, std::uint16_t port, Pacer& pacer);

  // Takes the connection that stands, or listens until a controller has dialled in.
  [[nodiscard]] std::expected<void, PortError> Open(Duration limit) override;
  // Ends the connection and stops listening: nobody is meant to dial in any more, also after an Open that failed.
  void Close() override;
  [[nodiscard]] bool IsOpen() const override;
  [[nodiscard]] Result Write(std::string_view& bytes, Duration slice) override;
  [[nodiscard]] Result Read(std::string& buffer, Duration slice) override;
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override { return Duration::zero(); }
  [[nodiscard]] bool SetBaudRate(int) override { return false; }
  [[nodiscard]] std::string Description() const override;
  [[nodiscard]] bool IsCalled() const override { return true; }
  void DropPartner() override;
  [[nodiscard]] bool HasNewerCall() override;

 private:
  [[nodiscard]] bool Listens() const;
  [[nodiscard]] Result Handle(Result result);

  ListeningSocketImpl& mSocket;
  std::uint16_t mPort;
  Pacer& mPacer;
  bool mIsInUse = false;      // opened, and not closed since
  int mConnectionNumber = 0;  // of the connection that this port took; 0: none
  PortError mLoss;
};

}  // namespace kv
