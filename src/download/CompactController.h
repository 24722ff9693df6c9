#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// Which way an O/S goes into a compact controller.
enum class CompactKind : std::uint8_t { Q50 = 1, Q51OrQ58 = 2, PX1 = 3, PR1 = 4 };

// What the reply to "ID" tells about a compact controller.
struct CompactController {
  CompactKind kind = CompactKind::Q50;
  bool isQ58 = false;     // with CompactKind::Q51OrQ58
  bool isInBoot = false;  // its boot loader answers
  int osVersion = 0;      // that is installed, its digits without the points: 460; 0 when it is not known

  // What an O/S for it must name: "Q50", "Q51", "Q58", "PX1" or "PR1". The BRIO controllers take the O/S of the PX1.
  [[nodiscard]] std::string OsModel() const;

  bool operator==(const CompactController&) const = default;
};

// From the data of the reply, for example "Q50-2-R34|50|4.60|19" (CommandReply::Data). Nothing when it is of no compact
// controller. A boot loader that only says "BOOT" is told by its hardware code.
[[nodiscard]] std::optional<CompactController> ParseCompactIdentification(std::string_view data);

}  // namespace kv
