#include "editors/CharacterTable.h"

#include "base/AnsiText.h"
#include "base/Hex.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 32> kControlNames = {
    "(NUL)", "(SOH)", "(STX)", "(ETX)", "(EOT)", "(ENQ)", "(ACK)", "(BEL)",  //
    "(BS)",  "(HT)",  "(LF)",  "(VT)",  "(FF)",  "(CR)",  "(SO)",  "(SI)",   //
    "(DLE)", "(DC1)", "(DC2)", "(DC3)", "(DC4)", "(NAK)", "(SYN)", "(ETB)",  //
    "(CAN)", "(EM)",  "(SUB)", "(ESC)", "(FS)",  "(GS)",  "(RS)",  "(US)"};

struct Note {
  std::uint8_t code;
  CharacterMark mark;
  std::string_view text;
};
constexpr std::array<Note, 12> kNotes = {{
    {0x09, CharacterMark::Fit, "Tab: it occurs in no value"},
    {0x0A, CharacterMark::Unfit, "Ends a line: it cannot separate values"},
    {0x0D, CharacterMark::Unfit, "Ends a line: it cannot separate values"},
    {0x20, CharacterMark::None, "Space"},
    {0x7F, CharacterMark::None, "Delete"},
    {0x81, CharacterMark::None, "No character"},
    {0x8D, CharacterMark::None, "No character"},
    {0x8F, CharacterMark::None, "No character"},
    {0x90, CharacterMark::None, "No character"},
    {0x9D, CharacterMark::None, "No character"},
    {0xA0, CharacterMark::None, "No-break space"},
    {0xAD, CharacterMark::None, "Soft hyphen"},
}};

CharacterRow MakeRow(std::uint8_t code) {
  const char byte = static_cast<char>(code);
  return {
      .code = code,
      .decimal = std::to_string(code),
      .hex = ToHex(code, 2),
      .name = code < kControlNames.size() ? std::string(kControlNames[code]) : AnsiToUtf8(std::string_view(&byte, 1))};
}

std::array<CharacterRow, kCharacterCount> MakeTable() {
  std::array<CharacterRow, kCharacterCount> table;
  for (std::size_t code = 0; code < table.size(); ++code) table[code] = MakeRow(static_cast<std::uint8_t>(code));
  for (const Note& note : kNotes) {
    table[note.code].mark = note.mark;
    table[note.code].note = note.text;
  }
  return table;
}

}  // namespace

const std::array<CharacterRow, kCharacterCount>& CharacterTable() {
  static const std::array<CharacterRow, kCharacterCount> table = MakeTable();
  return table;
}

std::optional<std::uint8_t> CodeFromHex(std::string_view hex) {
  const auto code = ParseHex(hex);
  return code && *code < kCharacterCount ? std::optional(static_cast<std::uint8_t>(*code)) : std::nullopt;
}

std::optional<std::uint8_t> CodeOfCharacter(std::string_view utf8) {
  const std::string ansi = Utf8ToAnsi(utf8);
  if (ansi.size() != 1 || AnsiToUtf8(ansi) != utf8) return std::nullopt;
  return static_cast<std::uint8_t>(ansi.front());
}

}  // namespace kv
