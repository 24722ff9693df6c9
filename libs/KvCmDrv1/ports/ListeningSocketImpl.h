#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "KvCmDrv1/ports/ConnectedSocket.h"
#include "link/ListeningSocket.h"

namespace kv {

// The Ethernet socket of a program: listens on IPv4, on every network of this machine.
class ListeningSocketImpl final : public ListeningSocket {
 public:
  ListeningSocketImpl();
  ~ListeningSocketImpl() override;

  [[nodiscard]] bool Listen(std::uint16_t port) override;
  [[nodiscard]] bool Listen() override;
  void Close() override;
  [[nodiscard]] bool Accept(int requestId) override;
  [[nodiscard]] State GetState() const override { return mState; }
  void Poll() override;

  // Of the request that waits; 0 when none does.
  [[nodiscard]] int RequestId() const { return mRequest.IsOpen() ? mRequestId : 0; }
  // Rises with each accepted connection: tells one from the one before it.
  [[nodiscard]] int ConnectionNumber() const { return mConnectionNumber; }
  // The accepted connection; not open unless the state is Connected.
  [[nodiscard]] ConnectedSocket& Connection() { return mConnection; }
  // "192.168.1.20:49152", the other end of the request or connection.
  [[nodiscard]] const std::string& PartnerText() const { return mPartner; }
  [[nodiscard]] std::uint16_t LocalPort() const { return mPort; }

 private:
  struct Listener;

  void TakeRequest();
  void StopListening();

  std::unique_ptr<Listener> mListener;  // null unless listening
  ConnectedSocket mRequest;             // connected by the system, not yet accepted here
  ConnectedSocket mConnection;
  State mState = State::Closed;
  std::uint16_t mPort = 0;
  int mRequestId = 0;
  int mConnectionNumber = 0;
  std::string mPartner;
};

}  // namespace kv
