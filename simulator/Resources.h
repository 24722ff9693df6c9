#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "simulator/Refusal.h"
#include "simulator/panel/Display.h"

namespace sim {

enum class ResourceKind : std::uint16_t { Fonts = 1, Images = 2 };

// Fonts and images that a colour model keeps for its panel. They are made when somebody first asks for those of a
// display of this size, once for all controllers that have one.
class Resources {
 public:
  explicit Resources(const Display& display) : mDisplay(display) {}

  // The count of all entries(2), then the entries from `first` on, as many as fit into a reply.
  [[nodiscard]] Result<std::string> Directory(std::uint16_t kind, std::uint32_t first) const;
  // 1 to 4096 bytes of one resource, all of them inside it.
  [[nodiscard]] Result<std::string> Piece(std::uint16_t kind, std::uint16_t id, std::uint32_t offset,
                                          std::uint32_t length) const;
  // CRC-32 of all entries.
  [[nodiscard]] std::uint32_t DirectoryCrc(ResourceKind kind) const;
  // The bytes of an image; none when there is none with that id.
  [[nodiscard]] std::string_view Image(std::uint16_t id) const;

 private:
  Display mDisplay;
};

}  // namespace sim
