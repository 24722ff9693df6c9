#include "host/PlatformHelp.h"

namespace kv {

// No viewer of these systems takes a map number.
bool ShowPlatformHelp(const std::filesystem::path&, std::int32_t) {
  return false;
}

}  // namespace kv
