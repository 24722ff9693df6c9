#include "link/OsVersion.h"

#include <string>

#include "base/Numbers.h"

namespace kv {
namespace {

constexpr std::int64_t kLargestNumber = 999999999;

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::optional<int> ParseVersionNumber(std::string_view text) {
  const auto number = ParseInteger(Trim(text));
  if (!number || *number < 0 || *number > kLargestNumber) return std::nullopt;
  return static_cast<int>(*number);
}

// The part with this index, counted from 0, between separators; nothing when there are fewer.
std::optional<std::string_view> Part(std::string_view text, char separator, int index) {
  for (; index > 0; --index) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) return std::nullopt;
    text.remove_prefix(end + 1);
  }
  return text.substr(0, text.find(separator));
}

}  // namespace

std::optional<ColourOsVersion> ParseColourOsVersion(std::string_view osVersion) {
  constexpr std::size_t kLabel = 4;  // "O/S "
  const auto field = Part(osVersion, ';', 3);
  if (!field || field->size() <= kLabel) return std::nullopt;
  const std::string_view version = field->substr(kLabel);
  const auto minorText = Part(version, '.', 1);
  if (!minorText) return std::nullopt;
  const auto major = ParseVersionNumber(*Part(version, '.', 0));
  const auto minor = ParseVersionNumber(*minorText);
  if (!major || !minor) return std::nullopt;
  return ColourOsVersion{*major, *minor};
}

std::optional<int> ParsePlainOsVersion(std::string_view osVersion) {
  std::string digits(osVersion);
  std::erase(digits, '.');
  return ParseVersionNumber(digits);
}

}  // namespace kv
