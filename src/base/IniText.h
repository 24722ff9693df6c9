#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace kv {

// The text of an ini file, read and changed line by line; no files here. Bytes are Windows-1252. Whatever the bytes
// are, reading is bounded by them, and a change leaves every byte outside of its lines as it was.
//
// The rules: names of sections and keys are compared without case and without the blanks around them; the first section
// of a name counts, and in it the first key; a line that starts with ";" is a comment, but "#key" is a key; text after
// "]" does not count; a line without "=" is no key. A byte-order mark of UTF-8 may stand in front.
class IniText {
 public:
  explicit IniText(std::string text) : mText(std::move(text)) {}

  [[nodiscard]] const std::string& Text() const { return mText; }

  // The value without blanks around it, then without one pair of equal quotes around that; it ends at a NUL.
  [[nodiscard]] std::optional<std::string> Value(std::string_view section, std::string_view key) const;

  // Sets the value, raw, in a line that ends with CR LF. A name that is there keeps its spelling; a new key goes to the
  // end of its section, before the blank lines there; a new section goes to the end of the text.
  void SetValue(std::string_view section, std::string_view key, std::string_view value);

  void DeleteKey(std::string_view section, std::string_view key);

  // Deletes the section's header and all lines up to the next header, comments among them.
  void DeleteSection(std::string_view section);

  // Whether the texts can stand in a file and be found again: names are not empty, and nothing in them or in the value
  // makes another line, section, key or comment of them.
  [[nodiscard]] static bool IsSectionName(std::string_view name);
  [[nodiscard]] static bool IsKeyName(std::string_view name);
  [[nodiscard]] static bool IsValue(std::string_view value);

  // `text` without the blanks at its end.
  [[nodiscard]] static std::string_view WithoutTrailingBlanks(std::string_view text);

 private:
  // Offsets into mText: the section's header line and, behind it, its lines.
  struct Section {
    std::size_t header;
    std::size_t begin;
    std::size_t end;
  };
  // The key's line, and where in it the "=" ends.
  struct Key {
    std::size_t begin;
    std::size_t value;
    std::size_t end;
  };

  [[nodiscard]] std::optional<Section> FindSection(std::string_view name) const;
  [[nodiscard]] std::optional<Key> FindKey(const Section& section, std::string_view name) const;
  [[nodiscard]] std::size_t EndWithoutBlankLines(const Section& section) const;
  [[nodiscard]] std::size_t EndOfLine(std::size_t begin) const;
  [[nodiscard]] std::string_view Line(std::size_t begin, std::size_t end) const;
  void InsertLine(std::size_t at, std::string_view line);

  std::string mText;
};

}  // namespace kv
