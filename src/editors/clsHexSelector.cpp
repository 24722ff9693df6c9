#include "editors/clsHexSelector.h"

#include "editors/CharacterTable.h"

namespace kv {

std::optional<std::uint8_t> clsHexSelector::SelectChar() {
  constexpr const char* kComma = "2C";
  const auto chosen = mWindow.Edit(kComma);
  return chosen ? CodeFromHex(*chosen) : std::nullopt;
}

}  // namespace kv
