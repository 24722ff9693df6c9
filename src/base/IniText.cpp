#include "base/IniText.h"

#include <algorithm>

namespace kv {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\v\f\r";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kLineBreakers{"\r\n\0", 3};

std::string_view Trim(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return IniText::WithoutTrailingBlanks(text);
}

// Lower case in Windows-1252: the letters A to Z, those with accents, and the four that stand apart.
unsigned char Fold(char c) {
  const auto byte = static_cast<unsigned char>(c);
  const bool plain = byte >= 'A' && byte <= 'Z';
  const bool accented = byte >= 0xC0 && byte <= 0xDE && byte != 0xD7;
  if (plain || accented) return static_cast<unsigned char>(byte + 0x20);
  switch (byte) {
    case 0x8A:
      return 0x9A;  // S with caron
    case 0x8C:
      return 0x9C;  // OE
    case 0x8E:
      return 0x9E;  // Z with caron
    case 0x9F:
      return 0xFF;  // Y with diaeresis
    default:
      return byte;
  }
}

bool SameName(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, Fold, Fold);
}

// The name in a section header; nothing when the line is none.
std::optional<std::string_view> SectionName(std::string_view line) {
  line = Trim(line);
  const std::size_t close = line.find(']');
  if (!line.starts_with('[') || close == std::string_view::npos) return std::nullopt;
  return Trim(line.substr(1, close - 1));
}

// The name in front of the first "="; nothing when the line holds no key.
std::optional<std::string_view> KeyName(std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || Trim(line).starts_with(';')) return std::nullopt;
  return Trim(line.substr(0, equals));
}

std::string_view WithoutQuotes(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

bool IsOneLine(std::string_view text) {
  return text.find_first_of(kLineBreakers) == std::string_view::npos;
}

}  // namespace

std::optional<std::string> IniText::Value(std::string_view section, std::string_view key) const {
  const auto lines = FindSection(section);
  const auto found = lines ? FindKey(*lines, key) : std::nullopt;
  if (!found) return std::nullopt;
  std::string_view value = Line(found->value, found->end);
  value = value.substr(0, value.find('\0'));
  return std::string(WithoutQuotes(Trim(value)));
}

void IniText::SetValue(std::string_view section, std::string_view key, std::string_view value) {
  auto lines = FindSection(section);
  if (!lines) {
    InsertLine(mText.size(), "[" + std::string(section) + "]");
    lines = Section{.header = mText.size(), .begin = mText.size(), .end = mText.size()};
  }
  if (const auto found = FindKey(*lines, key)) {
    mText.replace(found->value, found->end - found->value, std::string(value).append(kLineEnd));
  } else {
    InsertLine(EndWithoutBlankLines(*lines), std::string(key) + "=" + std::string(value));
  }
}

void IniText::DeleteKey(std::string_view section, std::string_view key) {
  const auto lines = FindSection(section);
  const auto found = lines ? FindKey(*lines, key) : std::nullopt;
  if (found) mText.erase(found->begin, found->end - found->begin);
}

void IniText::DeleteSection(std::string_view section) {
  if (const auto found = FindSection(section)) mText.erase(found->header, found->end - found->header);
}

bool IniText::IsSectionName(std::string_view name) {
  return !Trim(name).empty() && IsOneLine(name) && name.find(']') == std::string_view::npos;
}

bool IniText::IsKeyName(std::string_view name) {
  const std::string_view bare = Trim(name);
  return !bare.empty() && IsOneLine(name) && !bare.starts_with(';') && !bare.starts_with('[') &&
         bare.find('=') == std::string_view::npos;
}

bool IniText::IsValue(std::string_view value) {
  return IsOneLine(value);
}

std::string_view IniText::WithoutTrailingBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::optional<IniText::Section> IniText::FindSection(std::string_view name) const {
  name = Trim(name);
  std::optional<Section> found;
  std::size_t end = 0;
  for (std::size_t begin = mText.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0; begin < mText.size();
       begin = end) {
    end = EndOfLine(begin);
    const auto header = SectionName(Line(begin, end));
    if (header && found) {
      found->end = begin;
      return found;
    }
    if (header && SameName(*header, name)) found = Section{.header = begin, .begin = end, .end = mText.size()};
  }
  return found;
}

std::optional<IniText::Key> IniText::FindKey(const Section& section, std::string_view name) const {
  name = Trim(name);
  std::size_t end = 0;
  for (std::size_t begin = section.begin; begin < section.end; begin = end) {
    end = EndOfLine(begin);
    const std::string_view line = Line(begin, end);
    const auto key = KeyName(line);
    if (!key || !SameName(*key, name)) continue;
    return Key{.begin = begin, .value = begin + line.find('=') + 1, .end = end};
  }
  return std::nullopt;
}

// Where the section's last line that is not blank ends.
std::size_t IniText::EndWithoutBlankLines(const Section& section) const {
  std::size_t last = section.begin;
  std::size_t end = 0;
  for (std::size_t begin = section.begin; begin < section.end; begin = end) {
    end = EndOfLine(begin);
    if (!Trim(Line(begin, end)).empty()) last = end;
  }
  return last;
}

// The offset behind the line feed that ends the line, or the end of the text.
std::size_t IniText::EndOfLine(std::size_t begin) const {
  const std::size_t feed = mText.find('\n', begin);
  return feed == std::string::npos ? mText.size() : feed + 1;
}

// The bytes without the line end.
std::string_view IniText::Line(std::size_t begin, std::size_t end) const {
  std::string_view line = std::string_view(mText).substr(begin, end - begin);
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

void IniText::InsertLine(std::size_t at, std::string_view line) {
  std::string inserted;
  const bool first = at == 0 || (at == kByteOrderMark.size() && mText.starts_with(kByteOrderMark));
  if (!first && mText[at - 1] != '\n') inserted = kLineEnd;  // the last line of the text had no end
  inserted.append(line).append(kLineEnd);
  mText.insert(at, inserted);
}

}  // namespace kv
