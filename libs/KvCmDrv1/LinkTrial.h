#pragma once

#include "base/Time.h"
#include "link/VersionInfo.h"

namespace kv {

// What a trial of a link found: who answered, and how fast.
struct LinkTrial {
  VersionInfo version;
  Duration roundTrip{};
};

}  // namespace kv
