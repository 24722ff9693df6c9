#pragma once

#include <cstdint>
#include <string_view>

namespace sim {

// Addresses of the flash from `first` on, up to the one before `end`.
struct FlashArea {
  std::uint32_t first;
  std::uint32_t end;
};

// Where the boot loader of an Aurex controller takes parts of the O/S and the fonts.
struct FlashMap {
  std::string_view osModel;
  FlashArea os;
  FlashArea fonts;
};

// Every Aurex model has one; null for the O/S models of the compact family.
[[nodiscard]] const FlashMap* FindFlashMap(std::string_view osModel);

}  // namespace sim
