#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

#include "apps/kvsim/Endpoint.h"

namespace kvsim {

// Listens on `port` of the local `address`; 0 picks a free port. The error is a sentence for the user.
[[nodiscard]] std::expected<std::unique_ptr<Endpoint>, std::string> ListenOn(const std::string& address,
                                                                             std::uint16_t port);

// Dials out to `host`, again and again until there is somebody, and again when the connection has ended.
[[nodiscard]] std::expected<std::unique_ptr<Endpoint>, std::string> DialTo(const std::string& host, std::uint16_t port);

}  // namespace kvsim
