#pragma once

#include <asio/ip/tcp.hpp>
#include <system_error>

#include "KvCmDrv1/ports/ConnectedSocket.h"

namespace kv {

// Takes a connected socket away from the library that connected it; nothing, with the reason in `code`, where the
// system does not let it go.
[[nodiscard]] inline ConnectedSocket ReleaseSocket(asio::ip::tcp::socket& socket, std::error_code& code) {
#ifdef _WIN32
  // A socket is bound to the library's queue of completions, and taking it out again is a call that not every system
  // has. A second handle to the same connection needs nothing of the queue: it is used with calls that wait.
  WSAPROTOCOL_INFOW info{};
  if (WSADuplicateSocketW(socket.native_handle(), GetCurrentProcessId(), &info) != 0) {
    code = {WSAGetLastError(), std::system_category()};
    return {};
  }
  const SOCKET handle =
      WSASocketW(info.iAddressFamily, info.iSocketType, info.iProtocol, &info, 0, WSA_FLAG_OVERLAPPED);
  if (handle == INVALID_SOCKET) {
    code = {WSAGetLastError(), std::system_category()};
    return {};
  }
  socket.close(code);
  code.clear();
  return ConnectedSocket(handle);
#else
  const auto handle = socket.release(code);
  return code ? ConnectedSocket{} : ConnectedSocket(handle);
#endif
}

}  // namespace kv
