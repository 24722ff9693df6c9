#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/ports/ConnectedSocket.h"
#include "link/ListeningSocket.h"

namespace kv {

// The Ethernet socket of a program: listens on IPv4, on every network of this machine.
//
// It goes on listening behind a request and behind a connection: who calls meanwhile waits, up to kMostCallers of them,
// the oldest leaving first. So a stranger who holds the line cannot keep the controller out, and one that has lost
// power without hanging up can call anew. The newest caller is the next request.
class ListeningSocketImpl final : public ListeningSocket {
 public:
  static constexpr std::size_t kMostCallers = 8;

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
  // Whether somebody has called since the connection was accepted, and still waits.
  [[nodiscard]] bool HasNewerCaller() const;
  // Gives the port back, and hangs up on whoever waits.
  void Stop();
  // Ends the connection and listens on; who waits stays.
  void DropConnection();
  [[nodiscard]] std::uint16_t LocalPort() const { return mPort; }

 private:
  struct Listener;

  struct Caller {
    ConnectedSocket socket;
    std::string name;
    int number = 0;  // rises with each caller
  };

  [[nodiscard]] bool OpenPort();
  void TakeCallers();
  void TakeRequest();
  void EndRequest();
  void EndConnection();

  std::unique_ptr<Listener> mListener;  // null: the port is closed
  std::vector<Caller> mCallers;         // connected by the system and waiting, the oldest first
  ConnectedSocket mRequest;             // one of them, not yet accepted here
  ConnectedSocket mConnection;
  State mState = State::Closed;
  std::uint16_t mPort = 0;
  int mCallerNumber = 0;
  int mRequestId = 0;       // the number of its caller
  bool mIsTelling = false;  // that the connection has ended
  int mConnectionNumber = 0;
  std::string mPartner;
};

}  // namespace kv
