#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "simulator/panel/ScreenRecords.h"

namespace sim::test {

inline std::uint32_t NumberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return value;
}

// A host that believes every reply: what it holds of the screen by the rules of the protocol page.
struct ReplayedScreen {
  std::map<std::uint32_t, std::pair<std::uint32_t, std::string>> slots;  // kind and body

  void Take(std::string_view records, bool beginsAnew) {
    if (beginsAnew) slots.clear();
    for (std::size_t at = 0; at < records.size();) {
      const std::uint32_t slot = NumberAt(records, at, 2);
      const std::uint32_t kind = NumberAt(records, at + 2, 1);
      const std::uint32_t length = NumberAt(records, at + 3, 1);
      ASSERT_LE(length, 80U);
      if (slot == 0) slots.erase(slots.lower_bound(16), slots.end());
      slots.erase(slot);
      if (kind != 0) slots[slot] = {kind, std::string(records.substr(at + 4, length))};
      at += 4 + length;
    }
  }
};

}  // namespace sim::test
