#include "apps/kvsim/SocketStream.h"

#include <algorithm>
#include <array>
#include <asio/buffer.hpp>
#include <utility>

#ifndef _WIN32
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#endif

namespace kvsim {
namespace {

constexpr std::size_t kReadSize = 16384;

#ifdef _WIN32
constexpr bool kCanWaitInside = false;
#else
constexpr bool kCanWaitInside = true;

void LimitWaits(int handle, kv::Duration limit) {
  timeval value{};
  value.tv_usec = static_cast<decltype(value.tv_usec)>(limit.count());
  ::setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value);
}
#endif

}  // namespace

SocketStream::SocketStream(asio::ip::tcp::socket socket) : mSocket(std::move(socket)) {
  std::error_code ignored;
  mSocket.set_option(asio::ip::tcp::no_delay(true), ignored);
  mSocket.non_blocking(!kCanWaitInside, ignored);
#ifndef _WIN32
  mSocket.native_non_blocking(false, ignored);
  LimitWaits(mSocket.native_handle(), kTalkPause);
#endif
}

Handle SocketStream::WaitHandle() const {
  return mSocket.native_handle();
}

bool SocketStream::CanWaitInside() const {
  return kCanWaitInside;
}

void SocketStream::Cut() {
  std::error_code ignored;
  mSocket.close(ignored);
}

#ifdef _WIN32

namespace {

Stream::Result ResultOf(std::error_code code) {
  if (!code) return Stream::Result::Done;
  const bool wouldWait = code == asio::error::would_block || code == asio::error::try_again;
  return wouldWait ? Stream::Result::Nothing : Stream::Result::Ended;
}

}  // namespace

Stream::Result SocketStream::Receive(std::string& buffer, Waiting) {
  std::array<char, kReadSize> chunk;
  std::error_code code;
  buffer.append(chunk.data(), mSocket.read_some(asio::buffer(chunk), code));
  return ResultOf(code);
}

Stream::Result SocketStream::Write(std::string_view& bytes) {
  std::error_code code;
  bytes.remove_prefix(mSocket.write_some(asio::buffer(bytes.data(), bytes.size()), code));
  return ResultOf(code);
}

#else

namespace {

Stream::Result ResultOfFailure() {
  return errno == EAGAIN || errno == EINTR ? Stream::Result::Nothing : Stream::Result::Ended;
}

}  // namespace

Stream::Result SocketStream::Receive(std::string& buffer, Waiting waiting) {
  const int flags = waiting == Waiting::Yes ? 0 : MSG_DONTWAIT;
  const std::size_t before = buffer.size();
  ssize_t count = 0;
  buffer.resize_and_overwrite(before + kReadSize, [&](char* bytes, std::size_t) {
    count = ::recv(mSocket.native_handle(), bytes + before, kReadSize, flags);
    return before + static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  });
  if (count < 0) return ResultOfFailure();
  return count > 0 ? Result::Done : Result::Ended;
}

Stream::Result SocketStream::Write(std::string_view& bytes) {
  const auto count = ::send(mSocket.native_handle(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (count < 0) return ResultOfFailure();
  bytes.remove_prefix(static_cast<std::size_t>(count));
  return Result::Done;
}

#endif

}  // namespace kvsim
