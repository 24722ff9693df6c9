#include <windows.h>

#include <algorithm>
#include <limits>

#include "base/ProfileFile.h"

namespace kv {

namespace {

// The calls take a name in the platform's own code page, and look for one without a folder among the system's files.
std::optional<std::string> AnsiName(const std::filesystem::path& file) {
  std::error_code error;
  const std::wstring name = std::filesystem::absolute(file, error).wstring();
  if (error || name.empty()) return std::nullopt;
  const int length = static_cast<int>(name.size());
  BOOL lost = FALSE;
  std::string ansi(name.size() * 4, '\0');
  const int written = WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, name.data(), length, ansi.data(),
                                          static_cast<int>(ansi.size()), nullptr, &lost);
  if (written <= 0 || lost != FALSE) return std::nullopt;
  ansi.resize(static_cast<std::size_t>(written));
  return ansi;
}

bool IsTooLarge(const std::filesystem::path& file) {
  std::error_code error;
  const auto size = std::filesystem::file_size(file, error);
  return !error && size > kLargestProfile;
}

std::string Read(const std::string& name, const std::string& section, const std::string& key, const char* fallback,
                 std::size_t bufferSize) {
  std::string value(std::min<std::size_t>(bufferSize, std::numeric_limits<DWORD>::max()), '\0');
  value.resize(GetPrivateProfileStringA(section.c_str(), key.c_str(), fallback, value.data(),
                                        static_cast<DWORD>(value.size()), name.c_str()));
  return value;
}

}  // namespace

std::optional<std::string> ReadFromProfile(const std::filesystem::path& file, std::string_view section,
                                           std::string_view key, std::size_t bufferSize) {
  const auto name = AnsiName(file);
  if (!name || IsTooLarge(file)) return std::nullopt;
  // Only a missing key gives two different answers to two different fallbacks.
  const std::string sectionName(section);
  const std::string keyName(key);
  constexpr std::size_t kShort = 3;
  const bool found = Read(*name, sectionName, keyName, "a", kShort) == Read(*name, sectionName, keyName, "b", kShort);
  return found ? std::optional(Read(*name, sectionName, keyName, "", bufferSize)) : std::nullopt;
}

bool WriteToProfile(const std::filesystem::path& file, std::string_view section, std::optional<std::string_view> key,
                    std::optional<std::string_view> value) {
  const auto name = AnsiName(file);
  if (!name || IsTooLarge(file)) return false;
  const std::string sectionName(section);
  const std::string keyName(key.value_or(""));
  const std::string valueText(value.value_or(""));
  return WritePrivateProfileStringA(sectionName.c_str(), key ? keyName.c_str() : nullptr,
                                    key && value ? valueText.c_str() : nullptr, name->c_str()) != 0;
}

}  // namespace kv
