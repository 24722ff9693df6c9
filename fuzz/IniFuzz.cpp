// Any bytes as an ini file: it is read, changed and read again, and only what was meant to change has changed.
// The input is a line of names, "section key value" by blanks, and behind it the file.

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/IniText.h"

namespace {

using kv::IniText;

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

std::string_view TakeUntil(std::string_view& text, char separator) {
  const std::size_t at = text.find(separator);
  const std::string_view word = text.substr(0, at);
  text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
  return word;
}

// A byte-order mark stands in front of the lines and belongs to none.
std::size_t StartOfLines(std::string_view text) {
  return text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
}

std::vector<std::string_view> Lines(std::string_view text, std::size_t start) {
  text.remove_prefix(start);
  std::vector<std::string_view> lines;
  while (!text.empty()) lines.push_back(TakeUntil(text, '\n'));
  return lines;
}

// Whether `fewer` is `lines` without at most `limit` of them in one row.
bool IsWithoutOneRun(const std::vector<std::string_view>& lines, const std::vector<std::string_view>& fewer,
                     std::size_t limit) {
  if (fewer.size() > lines.size() || lines.size() - fewer.size() > limit) return false;
  std::size_t front = 0;
  while (front < fewer.size() && lines[front] == fewer[front]) ++front;
  std::size_t back = 0;
  while (back < fewer.size() - front && lines[lines.size() - 1 - back] == fewer[fewer.size() - 1 - back]) ++back;
  return front + back == fewer.size();
}

// A value that neither blanks nor quotes change when it is read.
bool IsReadAsWritten(std::string_view value) {
  return value.find_first_of(" \t\v\f\"'") == std::string_view::npos;
}

void CheckWrite(const std::string& text, std::string_view section, std::string_view key, std::string_view value) {
  IniText ini(text);
  ini.SetValue(section, key, value);
  const auto read = ini.Value(section, key);
  Require(read.has_value(), "what was written is found");
  Require(!IsReadAsWritten(value) || *read == value, "what was written is read");

  const std::string once = ini.Text();
  ini.SetValue(section, key, value);
  Require(ini.Text() == once, "writing the same again changes nothing");

  // A changed line counts as one that went on either side; a new section adds two lines.
  std::vector<std::string_view> before = Lines(text, StartOfLines(text));
  std::vector<std::string_view> after = Lines(once, StartOfLines(text));
  while (!before.empty() && !after.empty() && before.front() == after.front()) {
    before.erase(before.begin());
    after.erase(after.begin());
  }
  while (!before.empty() && !after.empty() && before.back() == after.back()) {
    before.pop_back();
    after.pop_back();
  }
  Require(before.size() <= 1 && after.size() <= 3, "a write changes its line only");
}

void CheckDeletions(const std::string& text, std::string_view section, std::string_view key) {
  IniText ini(text);
  const bool had = ini.Value(section, key).has_value();
  ini.DeleteKey(section, key);
  Require(had == (ini.Text() != text), "a deletion changes the text when there is the key");
  Require(IsWithoutOneRun(Lines(text, StartOfLines(text)), Lines(ini.Text(), StartOfLines(text)), 1),
          "a deleted key takes one line along");

  ini.DeleteSection(section);
  Require(IsWithoutOneRun(Lines(text, StartOfLines(text)), Lines(ini.Text(), StartOfLines(text)), text.size()),
          "a deleted section takes its lines only");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  std::string_view names = TakeUntil(rest, '\n');
  const std::string_view section = TakeUntil(names, ' ');
  const std::string_view key = TakeUntil(names, ' ');
  const std::string_view value = names;
  if (!IniText::IsSectionName(section) || !IniText::IsKeyName(key) || !IniText::IsValue(value)) return 0;
  const std::string text(rest);
  CheckWrite(text, section, key, value);
  CheckDeletions(text, section, key);
  return 0;
}
