#include "base/AtomicFile.h"
#include "base/IniText.h"
#include "base/ProfileFile.h"

namespace kv {

namespace {

// The file's text, empty for a missing file; nothing when it is there and is not ours to read or to change.
std::optional<std::string> ProfileText(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::status(file, error).type() == std::filesystem::file_type::not_found) return std::string{};
  auto text = ReadWholeFile(file, kLargestProfile);
  if (!text || text->starts_with("\xFF\xFE") || text->starts_with("\xFE\xFF")) return std::nullopt;  // UTF-16
  return *std::move(text);
}

}  // namespace

std::optional<std::string> ReadByLines(const std::filesystem::path& file, std::string_view section,
                                       std::string_view key, std::size_t bufferSize) {
  auto text = ProfileText(file);
  if (!text) return std::nullopt;
  auto value = IniText(*std::move(text)).Value(section, key);
  if (value && value->size() >= bufferSize) value->resize(bufferSize - 1);
  return value;
}

bool WriteByLines(const std::filesystem::path& file, std::string_view section, std::optional<std::string_view> key,
                  std::optional<std::string_view> value) {
  const auto before = ProfileText(file);
  if (!before) return false;
  IniText ini(*before);
  if (!key) {
    ini.DeleteSection(section);
  } else if (!value) {
    ini.DeleteKey(section, *key);
  } else {
    ini.SetValue(section, *key, *value);
  }
  return ini.Text() == *before || SaveAtomically(file, ini.Text()).has_value();
}

}  // namespace kv
