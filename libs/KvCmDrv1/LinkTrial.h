#pragma once

#include <cstdint>
#include <optional>

#include "base/Time.h"
#include "link/VersionInfo.h"

namespace kv {

// What a trial of a link found: who answered, and how fast.
struct LinkTrial {
  VersionInfo version;
  std::optional<std::uint32_t> serialNumber;  // nothing: it does not tell it
  Duration roundTrip{};
};

}  // namespace kv
