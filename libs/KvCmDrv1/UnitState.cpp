#include "KvCmDrv1/UnitState.h"

#include <algorithm>
#include <array>

#include "base/AnsiText.h"

namespace kv {

std::string NameOf(const Identity& identity) {
  return AnsiToUtf8(identity.version.model) + ", serial number " + std::to_string(identity.serialNumber);
}

bool UnderstandsAsciiOnly(std::string_view model) {
  constexpr auto kPrefixes = std::to_array<std::string_view>({"Q5", "PX1", "PR1", "BQ", "BP", "BR", "Br"});
  return std::ranges::any_of(kPrefixes, [model](std::string_view prefix) { return model.starts_with(prefix); });
}

}  // namespace kv
