#pragma once

#include <asio/ip/tcp.hpp>
#include <system_error>

#include "apps/kvsim/Stream.h"

namespace kvsim {

// A TCP connection to one client. The context that the socket was made with must outlive it.
class SocketStream final : public Stream {
 public:
  explicit SocketStream(asio::ip::tcp::socket socket);

  [[nodiscard]] Handle WaitHandle() const override;
  [[nodiscard]] Result Read(std::string& buffer) override { return Receive(buffer, Waiting::No); }
  [[nodiscard]] Result ReadWaiting(std::string& buffer) override { return Receive(buffer, Waiting::Yes); }
  [[nodiscard]] bool CanWaitInside() const override;
  [[nodiscard]] Result Write(std::string_view& bytes) override;
  void Cut() override;

 private:
  enum class Waiting { No, Yes };
  [[nodiscard]] Result Receive(std::string& buffer, Waiting waiting);

  mutable asio::ip::tcp::socket mSocket;  // asio asks for a socket that may change to tell its handle
};

}  // namespace kvsim
