#pragma once

#include <cstdint>
#include <string>

#include "base/Time.h"
#include "link/Channel.h"

namespace kv {

// How long so much traffic takes on this link, beside what the controller needs for its own work: `bytes` in both
// directions, in `exchanges` requests.
[[nodiscard]] Duration TimeOnLink(const Channel& link, std::uint64_t bytes, std::uint64_t exchanges);

// "3 s", "4 min 54 s"; at least a second.
[[nodiscard]] std::string TimeOnLinkText(Duration about);

}  // namespace kv
