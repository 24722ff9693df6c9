#include "base/ProfileStrings.h"

#include "base/IniText.h"
#include "base/ProfileFile.h"

namespace kv {

std::string ReadProfileString(const std::filesystem::path& file, std::string_view section, std::string_view key,
                              std::string_view fallback, std::size_t bufferSize) {
  if (bufferSize == 0) return {};
  const bool named = IniText::IsSectionName(section) && IniText::IsKeyName(key);
  auto value = named ? ReadFromProfile(file, section, key, bufferSize) : std::nullopt;
  return value ? *value : std::string(IniText::WithoutTrailingBlanks(fallback).substr(0, bufferSize - 1));
}

bool WriteProfileString(const std::filesystem::path& file, std::string_view section,
                        std::optional<std::string_view> key, std::optional<std::string_view> value) {
  if (!IniText::IsSectionName(section)) return false;
  if (key && !IniText::IsKeyName(*key)) return false;
  if (value && !IniText::IsValue(*value)) return false;
  return WriteToProfile(file, section, key, value);
}

}  // namespace kv
