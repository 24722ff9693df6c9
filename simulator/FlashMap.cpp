#include "simulator/FlashMap.h"

#include <algorithm>

namespace sim {
namespace {

// clang-format off
constexpr FlashMap kFlashMaps[] = {
    {"K220", {0x00080000, 0x00180000}, {0x00180000, 0x001C0000}},
    {"K222", {0x00080000, 0x00180000}, {0x00180000, 0x001C0000}},
    {"K330", {0x00100000, 0x00300000}, {0x00300000, 0x00380000}},
    {"CLR ", {0x01000000, 0x01400000}, {0x01400000, 0x01600000}},
};
// clang-format on

}  // namespace

const FlashMap* FindFlashMap(std::string_view osModel) {
  const auto map = std::ranges::find(kFlashMaps, osModel, &FlashMap::osModel);
  return map == std::end(kFlashMaps) ? nullptr : &*map;
}

}  // namespace sim
