#pragma once

#include <cstdint>
#include <functional>

namespace kv {

// An Ethernet socket that takes one incoming connection. A request closes the listening side and is then accepted on
// the same socket; after the partner has gone it can be put back to listening.
class ListeningSocket {
 public:
  enum class State { Closed, Listening, Requested, Connected };

  virtual ~ListeningSocket() = default;

  // Starts listening on `port`, 1 to 65535. False when the port is in use or not permitted.
  [[nodiscard]] virtual bool Listen(std::uint16_t port) = 0;
  // Listens again on the port of the last Listen().
  [[nodiscard]] virtual bool Listen() = 0;
  virtual void Close() = 0;
  // Takes the waiting request on this socket. False when the request has gone meanwhile.
  [[nodiscard]] virtual bool Accept(int requestId) = 0;
  [[nodiscard]] virtual State GetState() const = 0;

  // Delivers what has happened since the last call, as the events below, on this thread.
  virtual void Poll() = 0;

  std::function<void(int requestId)> OnConnectionRequest;
  std::function<void()> OnClose;
};

}  // namespace kv
