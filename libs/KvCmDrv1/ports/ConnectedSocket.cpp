#include "KvCmDrv1/ports/ConnectedSocket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace kv {
namespace {

constexpr std::size_t kReadSize = 16384;  // the longest reply of a controller is 8224 bytes

int WholeMilliseconds(Duration span) {
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(std::max(span, Duration::zero())).count());
}

enum class Receiving { Waiting, AtOnce, Peek };

// The calls that the platforms spell differently. A send never waits.
#ifdef _WIN32
using PollEntry = WSAPOLLFD;
constexpr short kReadable = POLLRDNORM;
constexpr short kWritable = POLLWRNORM;
std::error_code LastCode() {
  return {WSAGetLastError(), std::system_category()};
}
bool WouldWait(std::error_code code) {
  return code.value() == WSAEWOULDBLOCK;
}
void SetWaiting(ConnectedSocket::Handle handle) {
  u_long isOn = 1;
  ioctlsocket(handle, FIONBIO, &isOn);
}
void CloseHandleOf(ConnectedSocket::Handle handle) {
  closesocket(handle);
}
std::ptrdiff_t SendNow(ConnectedSocket::Handle handle, std::string_view bytes) {
  return send(handle, bytes.data(), static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 20)), 0);
}
std::ptrdiff_t Receive(ConnectedSocket::Handle handle, char* data, std::size_t size, Receiving how) {
  return recv(handle, data, static_cast<int>(size), how == Receiving::Peek ? MSG_PEEK : 0);
}
int PollOne(PollEntry& entry, int milliseconds) {
  return WSAPoll(&entry, 1, milliseconds);
}
#else
using PollEntry = pollfd;
constexpr short kWritable = POLLOUT;
std::error_code LastCode() {
  return {errno, std::system_category()};
}
bool WouldWait(std::error_code code) {
  return code.value() == EAGAIN || code.value() == EINTR;
}
void SetWaiting(ConnectedSocket::Handle handle) {
  fcntl(handle, F_SETFL, fcntl(handle, F_GETFL) & ~O_NONBLOCK);
}
void CloseHandleOf(ConnectedSocket::Handle handle) {
  ::close(handle);
}
std::ptrdiff_t SendNow(ConnectedSocket::Handle handle, std::string_view bytes) {
  return ::send(handle, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
}
std::ptrdiff_t Receive(ConnectedSocket::Handle handle, char* data, std::size_t size, Receiving how) {
  constexpr std::array<int, 3> kFlags{0, MSG_DONTWAIT, MSG_DONTWAIT | MSG_PEEK};
  return ::recv(handle, data, size, kFlags[static_cast<std::size_t>(how)]);
}
int PollOne(PollEntry& entry, int milliseconds) {
  return ::poll(&entry, 1, milliseconds);
}
#endif

bool WaitFor(ConnectedSocket::Handle handle, short events, Duration span) {
  PollEntry entry{};
  entry.fd = handle;
  entry.events = events;
  return PollOne(entry, WholeMilliseconds(span)) > 0;
}

}  // namespace

ConnectedSocket::ConnectedSocket(Handle handle) : mHandle(handle) {
  SetWaiting(handle);
}

ConnectedSocket::ConnectedSocket(ConnectedSocket&& other) noexcept
    : mHandle(std::exchange(other.mHandle, kNone)), mReceiveLimit(other.mReceiveLimit), mLossCode(other.mLossCode) {}

ConnectedSocket& ConnectedSocket::operator=(ConnectedSocket&& other) noexcept {
  std::swap(mHandle, other.mHandle);
  std::swap(mReceiveLimit, other.mReceiveLimit);
  std::swap(mLossCode, other.mLossCode);
  return *this;
}

void ConnectedSocket::Close() {
  if (IsOpen()) CloseHandleOf(std::exchange(mHandle, kNone));
}

Port::Result ConnectedSocket::Lose(std::error_code code) {
  mLossCode = code;
  Close();
  return Port::Result::Lost;
}

Port::Result ConnectedSocket::Write(std::string_view& bytes, Duration slice) {
  if (!IsOpen()) return Port::Result::Lost;
  if (bytes.empty()) return Port::Result::Done;
  std::ptrdiff_t sent = SendNow(mHandle, bytes);
  if (sent < 0 && WouldWait(LastCode())) {
    if (!WaitFor(mHandle, kWritable, slice)) return Port::Result::Nothing;
    sent = SendNow(mHandle, bytes);
  }
  if (sent < 0) {
    const auto code = LastCode();
    return WouldWait(code) ? Port::Result::Nothing : Lose(code);
  }
  bytes.remove_prefix(static_cast<std::size_t>(sent));
  return Port::Result::Done;
}

Port::Result ConnectedSocket::Read(std::string& buffer, Duration slice) {
  if (!IsOpen()) return Port::Result::Lost;
  const auto how = slice > Duration::zero() ? Receiving::Waiting : Receiving::AtOnce;
  if (how == Receiving::Waiting) SetReceiveLimit(slice);
#ifdef _WIN32
  if (!WaitFor(mHandle, kReadable, slice)) return Port::Result::Nothing;
#endif
  const std::size_t before = buffer.size();
  std::ptrdiff_t received = 0;
  buffer.resize_and_overwrite(before + kReadSize, [&](char* bytes, std::size_t) {
    received = Receive(mHandle, bytes + before, kReadSize, how);
    return before + static_cast<std::size_t>(std::max<std::ptrdiff_t>(received, 0));
  });
  if (received == 0) return Lose({});
  if (received < 0) {
    const auto code = LastCode();
    return WouldWait(code) ? Port::Result::Nothing : Lose(code);
  }
  return Port::Result::Done;
}

// Waiting inside the receiving call saves a call an exchange. The limit is told to the system only when it changes.
void ConnectedSocket::SetReceiveLimit([[maybe_unused]] Duration slice) {
#ifndef _WIN32
  if (slice == mReceiveLimit) return;
  mReceiveLimit = slice;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(slice);
  timeval value{};
  value.tv_sec = static_cast<decltype(value.tv_sec)>(seconds.count());
  value.tv_usec = static_cast<decltype(value.tv_usec)>((slice - seconds).count());
  ::setsockopt(mHandle, SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value);
#endif
}

bool ConnectedSocket::HasEnded() const {
  if (!IsOpen()) return true;
  char byte = 0;
  const std::ptrdiff_t received = Receive(mHandle, &byte, 1, Receiving::Peek);
  return received == 0 || (received < 0 && !WouldWait(LastCode()));
}

}  // namespace kv
