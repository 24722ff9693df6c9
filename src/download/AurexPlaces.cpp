#include "download/AurexPlaces.h"

#include <algorithm>

namespace kv {
namespace {

// clang-format off
constexpr AurexPlaces kPlaces[] = {
    // model  O/S                     fonts
    {"K220",  0x00080000, 0x00180000, 0x00180000, 0x001C0000},
    {"K222",  0x00080000, 0x00180000, 0x00180000, 0x001C0000},
    {"K330",  0x00100000, 0x00300000, 0x00300000, 0x00380000},
};
// clang-format on

}  // namespace

const AurexPlaces* PlacesOf(std::string_view osModel) {
  const auto places = std::ranges::find(kPlaces, osModel, &AurexPlaces::model);
  return places == std::end(kPlaces) ? nullptr : &*places;
}

}  // namespace kv
