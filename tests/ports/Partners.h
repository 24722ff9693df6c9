#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KvCmDrv1/ports/Port.h"
#include "base/InProcessLine.h"

// The other ends of the ports under test, on the bare calls of the system. No wait lasts longer than kLongest.
namespace kvtest {

constexpr int kLongestMilliseconds = 5000;

class Descriptor {
 public:
  explicit Descriptor(int handle = -1) : mHandle(handle) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : mHandle(std::exchange(other.mHandle, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    return *this;
  }

  [[nodiscard]] int Get() const { return mHandle; }
  void Close() {
    if (mHandle >= 0) ::close(std::exchange(mHandle, -1));
  }

  [[nodiscard]] bool IsReady(int milliseconds = kLongestMilliseconds) const {
    pollfd entry{mHandle, POLLIN, 0};
    return ::poll(&entry, 1, milliseconds) > 0;
  }
  // At least `count` bytes, or what came until the end or the longest wait.
  [[nodiscard]] std::string Take(std::size_t count) const {
    std::string bytes;
    char chunk[4096];
    while (bytes.size() < count && IsReady()) {
      const auto received = ::read(mHandle, chunk, sizeof chunk);
      if (received <= 0) break;
      bytes.append(chunk, static_cast<std::size_t>(received));
    }
    return bytes;
  }
  // Whether the other side has closed it, and not only been silent.
  [[nodiscard]] bool HasEnded() const {
    char byte = 0;
    return IsReady() && ::read(mHandle, &byte, 1) <= 0;
  }
  bool Give(std::string_view bytes) const {
    return ::write(mHandle, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }

 private:
  int mHandle;
};

inline sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

// A listening socket on a free port of this machine.
class Listener {
 public:
  explicit Listener(int backlog = 5) : mSocket(::socket(AF_INET, SOCK_STREAM, 0)) {
    auto address = Loopback(0);
    socklen_t size = sizeof address;
    ::bind(mSocket.Get(), reinterpret_cast<sockaddr*>(&address), size);
    ::listen(mSocket.Get(), backlog);
    ::getsockname(mSocket.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    mPort = ntohs(address.sin_port);
  }
  [[nodiscard]] std::uint16_t Port() const { return mPort; }
  [[nodiscard]] Descriptor Accept() const {
    return Descriptor(mSocket.IsReady() ? ::accept(mSocket.Get(), nullptr, nullptr) : -1);
  }
  void Close() { mSocket.Close(); }

 private:
  Descriptor mSocket;
  std::uint16_t mPort = 0;
};

inline std::uint16_t FreePort() {
  return Listener().Port();
}

// A connection to a local port; not open (Get() below 0) when it was refused.
inline Descriptor DialLoopback(std::uint16_t port) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM, 0));
  const auto address = Loopback(port);
  const bool isGood = ::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  return isGood ? std::move(socket) : Descriptor();
}

// Closes a connection the hard way: the other side sees a reset.
inline void Reset(Descriptor& socket) {
  const linger hard{1, 0};
  ::setsockopt(socket.Get(), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  socket.Close();
}

// The near end of a pseudo terminal; the far end is the serial port under test.
struct Pty {
  Descriptor near{::posix_openpt(O_RDWR | O_NOCTTY)};
  std::string name;

  Pty() {
    ::grantpt(near.Get());
    ::unlockpt(near.Get());
    name = ::ptsname(near.Get());
  }
};

// The partner of a port in this process.
struct Partner {
  bool echoes = false;  // sends back what it takes
  bool isConnected = false;
  std::string taken = {};
  std::string given = {};
};

class PartnerLine final : public kv::InProcessLine {
 public:
  explicit PartnerLine(Partner& partner) : mPartner(partner) {}
  bool Connect(kv::Instant) override { return mPartner.isConnected = true; }
  void Disconnect(kv::Instant) override { mPartner.isConnected = false; }
  bool IsConnected() const override { return mPartner.isConnected; }
  void Write(std::string_view bytes, kv::Instant) override {
    mPartner.taken += bytes;
    if (mPartner.echoes) mPartner.given += bytes;
  }
  std::string Read(kv::Instant) override { return std::exchange(mPartner.given, {}); }
  std::optional<kv::Instant> NextEvent() const override { return std::nullopt; }

 private:
  Partner& mPartner;
};

// What a port reads until there are `count` bytes, it is lost, or it has been silent for too long.
inline std::string ReadFrom(kv::Port& port, std::size_t count) {
  std::string bytes;
  constexpr kv::Duration kSlice = std::chrono::milliseconds(10);
  for (int silence = 0; bytes.size() < count && silence < kLongestMilliseconds / 10;) {
    const auto result = port.Read(bytes, kSlice);
    if (result == kv::Port::Result::Lost) break;
    silence = result == kv::Port::Result::Nothing ? silence + 1 : 0;
  }
  return bytes;
}

// Why a port does not open.
inline kv::PortError WhyNot(kv::Port& port, kv::Duration limit = std::chrono::seconds(5)) {
  const auto opened = port.Open(limit);
  EXPECT_FALSE(opened.has_value()) << port.Description();
  return opened ? kv::PortError() : opened.error();
}

inline bool WriteAll(kv::Port& port, std::string_view bytes) {
  while (!bytes.empty()) {
    if (port.Write(bytes, std::chrono::milliseconds(10)) == kv::Port::Result::Lost) return false;
  }
  return true;
}

// The bytes 0 to 255.
inline std::string EveryByte() {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  return bytes;
}

}  // namespace kvtest
