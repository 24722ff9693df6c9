#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <system_error>

#include "KvCmDrv1/ports/ConnectedSocket.h"
#include "base/Time.h"
#include "desktop/Pacer.h"

namespace kv {

// Looks `host` up (a name or an address) and connects to the first of its addresses that takes the connection. All of
// it takes `limit` at most; the pacer gets its turns meanwhile. The error is that of the address that said most: a
// refusal tells more than silence. A stop request is asio's operation_aborted, the limit its timed_out.
[[nodiscard]] std::expected<ConnectedSocket, std::error_code> ConnectTcp(const std::string& host, std::uint16_t port,
                                                                         Duration limit, Pacer& pacer);

}  // namespace kv
