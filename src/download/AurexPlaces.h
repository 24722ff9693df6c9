#pragma once

#include <cstdint>
#include <string_view>

namespace kv {

// Where the boot loader of an Aurex controller keeps what a download brings, by O/S model.
struct AurexPlaces {
  std::string_view model;
  std::uint32_t osStart;
  std::uint32_t osEnd;  // behind its last byte
  std::uint32_t fontsStart;
  std::uint32_t fontsEnd;
};

// Null for a model for which there is no O/S file.
[[nodiscard]] const AurexPlaces* PlacesOf(std::string_view osModel);

}  // namespace kv
