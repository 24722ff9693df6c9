#pragma once

#include <expected>
#include <memory>
#include <string>

#include "apps/kvsim/Endpoint.h"

namespace kvsim {

// A pseudo terminal, with `link` as a symbolic link to it: a serial port for other programs. It outlives them all; the
// link is removed in the end. The error is a sentence for the user (always one on Windows, which has none).
[[nodiscard]] std::expected<std::unique_ptr<Endpoint>, std::string> ServeOnPty(const std::string& link);

}  // namespace kvsim
