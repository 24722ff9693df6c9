#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/Refusal.h"

namespace sim {

// Fonts and images that a colour model keeps for its panel.
//   image: a 24-bit Windows bitmap, as files with the extension .bmp are
//   font:  "KFNT", then one byte each: cell width (8), cell height, first character, number of characters; then per
//   character
//          one byte a row, the leftmost dot in bit 7
struct Resource {
  std::uint16_t id = 0;
  std::string name;  // at most 32 characters
  std::string data;
};

enum class ResourceKind : std::uint16_t { Fonts = 1, Images = 2 };

class Resources {
 public:
  Resources();

  // Entry count(2), then per entry id(2) length(4) name(32, zero-padded).
  [[nodiscard]] Result<std::string> Directory(std::uint16_t kind) const;
  // 1 to 4096 bytes of one resource, all of them inside it.
  [[nodiscard]] Result<std::string> Piece(std::uint16_t kind, std::uint16_t id, std::uint32_t offset,
                                          std::uint32_t length) const;

 private:
  [[nodiscard]] Result<const std::vector<Resource>*> Of(std::uint16_t kind) const;

  std::vector<Resource> mFonts;
  std::vector<Resource> mImages;
};

}  // namespace sim
