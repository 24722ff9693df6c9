#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kv {

// What a character is worth as the separator of a text file's columns.
enum class CharacterMark {
  None,
  Fit,    // the tab, which occurs in no value
  Unfit,  // ends a line
};

// Backgrounds of marked rows, blue in the high byte, red in the low one. Black text is read on both.
inline constexpr std::uint32_t kFitColour = 65280;
inline constexpr std::uint32_t kUnfitColour = 255;

// One of the 256 characters of Windows-1252.
struct CharacterRow {
  std::uint8_t code = 0;
  std::string decimal = {};  // "9"
  std::string hex = {};      // "09"
  std::string name = {};     // "(HT)", from 32 on the character itself; UTF-8
  std::string note = {};     // what the name does not show: "Space", "No character"; often empty
  CharacterMark mark = CharacterMark::None;
};

inline constexpr std::size_t kCharacterCount = 256;

// By code.
[[nodiscard]] const std::array<CharacterRow, kCharacterCount>& CharacterTable();

// The code that hexadecimal digits stand for; nothing for a text that is no code.
[[nodiscard]] std::optional<std::uint8_t> CodeFromHex(std::string_view hex);

// The code of a text that is one character; nothing for any other text and for a character that Windows-1252 lacks.
[[nodiscard]] std::optional<std::uint8_t> CodeOfCharacter(std::string_view utf8);

}  // namespace kv
