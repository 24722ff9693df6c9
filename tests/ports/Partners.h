#pragma once

#include <gtest/gtest.h>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>
#endif

#include <cstdint>
#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <utility>

#include "KvCmDrv1/ports/Port.h"
#include "base/InProcessLine.h"
#include "tests/support/Recorded.h"

// The other ends of the ports under test, on the bare calls of the system. No wait lasts longer than kLongest.
namespace kvtest {

constexpr int kLongestMilliseconds = 5000;

// The calls that the platforms spell differently. On Windows a descriptor is always a socket.
namespace bare {
#ifdef _WIN32
using Handle = std::intptr_t;
inline SOCKET Of(Handle handle) {
  return static_cast<SOCKET>(handle);
}
inline void Close(Handle handle) {
  closesocket(Of(handle));
}
inline bool IsReady(Handle handle, int milliseconds) {
  WSAPOLLFD entry{};
  entry.fd = Of(handle);
  entry.events = POLLRDNORM;
  return WSAPoll(&entry, 1, milliseconds) > 0;
}
inline std::ptrdiff_t Read(Handle handle, char* bytes, std::size_t size) {
  return recv(Of(handle), bytes, static_cast<int>(size), 0);
}
inline std::ptrdiff_t Write(Handle handle, std::string_view bytes) {
  return send(Of(handle), bytes.data(), static_cast<int>(bytes.size()), 0);
}
// Not handed on to programs that the test starts.
inline Handle OpenSocket() {
  static const int kStarted = [] {
    WSADATA facts{};
    return WSAStartup(MAKEWORD(2, 2), &facts);
  }();
  constexpr DWORD kNotInherited = 0x80;
  return kStarted != 0 ? -1
                       : static_cast<Handle>(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, kNotInherited));
}
inline void StopWaiting(Handle handle) {
  u_long isOn = 1;
  ioctlsocket(Of(handle), FIONBIO, &isOn);
}
#else
using Handle = int;
inline int Of(Handle handle) {
  return handle;
}
inline void Close(Handle handle) {
  ::close(handle);
}
inline bool IsReady(Handle handle, int milliseconds) {
  pollfd entry{handle, POLLIN, 0};
  return ::poll(&entry, 1, milliseconds) > 0;
}
inline std::ptrdiff_t Read(Handle handle, char* bytes, std::size_t size) {
  return ::read(handle, bytes, size);
}
inline std::ptrdiff_t Write(Handle handle, std::string_view bytes) {
  return ::write(handle, bytes.data(), bytes.size());
}
inline Handle OpenSocket() {
  return ::socket(AF_INET, SOCK_STREAM, 0);
}
inline void StopWaiting(Handle handle) {
  ::fcntl(handle, F_SETFL, O_NONBLOCK);
}
#endif
}  // namespace bare

class Descriptor {
 public:
  explicit Descriptor(bare::Handle handle = -1) : mHandle(handle) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : mHandle(std::exchange(other.mHandle, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(mHandle, other.mHandle);
    return *this;
  }

  [[nodiscard]] bare::Handle Get() const { return mHandle; }
  void Close() {
    if (mHandle >= 0) bare::Close(std::exchange(mHandle, -1));
  }

  [[nodiscard]] bool IsReady(int milliseconds = kLongestMilliseconds) const {
    return bare::IsReady(mHandle, milliseconds);
  }
  // At least `count` bytes, or what came until the end or the longest wait.
  [[nodiscard]] std::string Take(std::size_t count) const {
    std::string bytes;
    char chunk[4096];
    while (bytes.size() < count && IsReady()) {
      const auto received = bare::Read(mHandle, chunk, sizeof chunk);
      if (received <= 0) break;
      bytes.append(chunk, static_cast<std::size_t>(received));
    }
    return bytes;
  }
  // What is there already.
  [[nodiscard]] std::string TakeNow() const { return IsReady(0) ? Take(1) : std::string(); }
  // Whether the other side has closed it, and not only been silent.
  [[nodiscard]] bool HasEnded() const {
    char byte = 0;
    return IsReady() && bare::Read(mHandle, &byte, 1) <= 0;
  }
  bool Give(std::string_view bytes) const {
    return bare::Write(mHandle, bytes) == static_cast<std::ptrdiff_t>(bytes.size());
  }

 private:
  bare::Handle mHandle;
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
  explicit Listener(int backlog = 5) : mSocket(bare::OpenSocket()) {
    auto address = Loopback(0);
    socklen_t size = sizeof address;
    ::bind(bare::Of(mSocket.Get()), reinterpret_cast<sockaddr*>(&address), size);
    ::listen(bare::Of(mSocket.Get()), backlog);
    ::getsockname(bare::Of(mSocket.Get()), reinterpret_cast<sockaddr*>(&address), &size);
    mPort = ntohs(address.sin_port);
  }
  [[nodiscard]] std::uint16_t Port() const { return mPort; }
  [[nodiscard]] Descriptor Accept() const {
    if (!mSocket.IsReady()) return Descriptor();
    return Descriptor(static_cast<bare::Handle>(::accept(bare::Of(mSocket.Get()), nullptr, nullptr)));
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
  Descriptor socket(bare::OpenSocket());
  const auto address = Loopback(port);
  const auto* place = reinterpret_cast<const sockaddr*>(&address);
  return ::connect(bare::Of(socket.Get()), place, sizeof address) == 0 ? std::move(socket) : Descriptor();
}

// One that is dialled, whether anybody answers or not.
inline Descriptor BeginDialling(std::uint16_t port) {
  Descriptor socket(bare::OpenSocket());
  bare::StopWaiting(socket.Get());
  const auto address = Loopback(port);
  ::connect(bare::Of(socket.Get()), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  return socket;
}

// Closes a connection the hard way: the other side sees a reset.
inline void Reset(Descriptor& socket) {
  const linger hard{1, 0};
  ::setsockopt(bare::Of(socket.Get()), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof hard);
  socket.Close();
}

#ifndef _WIN32
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
#endif

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

// The words of an error, whatever numbers the system gave to the ports of the test.
inline std::string Words(const kv::PortError& error) {
  const std::string words = error.happened + "\n" + error.cause + "\n" + error.cure + "\n";
  return std::regex_replace(words, std::regex("[0-9]{4,}|pts/[0-9]+|[a-z_]+ [(]process [0-9]+|(another port: ).*"),
                            "$1N");
}

// Why a port does not open.
inline kv::PortError WhyNot(kv::Port& port, kv::Duration limit = std::chrono::seconds(5)) {
  const auto opened = port.Open(limit);
  EXPECT_FALSE(opened.has_value()) << port.Description();
  kv::PortError error = opened ? kv::PortError() : opened.error();
  kv::test::ExpectAsRecorded([&error] { return Words(error); });
  return error;
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
