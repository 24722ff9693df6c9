#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "KvTele2/panel/Picture.h"
#include "base/Bytes.h"

namespace kv::panel {

// A character's dots, in rows of whole bytes, the leftmost dot in bit 7 of the first.
struct Glyph {
  int width = 0;
  std::span<const std::uint8_t> rows;
};

// A font of a controller's screen: characters of Windows-1252, each with a width of its own.
class ScreenFont {
 public:
  // From the bytes of the resource; else what is wrong with them, as part of a sentence.
  [[nodiscard]] static std::expected<ScreenFont, std::string> Parse(std::string_view bytes);

  [[nodiscard]] int Height() const { return mHeight; }  // 6 to 64 dots
  [[nodiscard]] int Base() const { return mBase; }      // rows from the top to the base line
  // Nothing: the font does not have it.
  [[nodiscard]] std::optional<Glyph> GlyphOf(char character) const;
  // Of a character, had or not.
  [[nodiscard]] int WidthOf(char character) const;
  [[nodiscard]] int WidthOf(std::string_view text) const;

 private:
  ScreenFont() = default;

  int mHeight = 0;
  int mBase = 0;
  std::array<std::uint8_t, 256> mWidths{};
  std::array<std::uint32_t, 256> mStarts{};  // of a character's rows in mRows
  Bytes mRows;
};

// The dots of a screen's image, a Windows bitmap of 24 bits without compression; else what is wrong with it. Dots of
// the colour FF00FF are transparent.
[[nodiscard]] std::expected<Picture, std::string> ParseScreenImage(std::string_view bytes);

}  // namespace kv::panel
