#include "link/OsVersion.h"

#include <string>

#include "base/AnsiText.h"
#include "base/Numbers.h"
#include "base/Texts.h"

namespace kv {
namespace {

constexpr std::int64_t kLargestNumber = 999999999;
constexpr int kVersionField = 3;
constexpr std::size_t kVersionLabel = 4;  // "O/S "

std::optional<int> ParseVersionNumber(std::string_view text) {
  const auto number = ParseInteger(TrimBlanks(text));
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
  const auto field = Part(osVersion, ';', kVersionField);
  if (!field || field->size() <= kVersionLabel) return std::nullopt;
  const std::string_view version = field->substr(kVersionLabel);
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

std::string OsVersionText(const VersionInfo& version) {
  // Of the fields the text is shown, not the numbers: 1.10 and 1.1 are two versions.
  if (!ParseColourOsVersion(version.osVersion)) return AnsiToUtf8(version.osVersion);
  return AnsiToUtf8(TrimBlanks(Part(version.osVersion, ';', kVersionField)->substr(kVersionLabel)));
}

std::string OsBuildText(const VersionInfo& version) {
  std::string build = version.osBuild;
  std::erase(build, ';');
  return AnsiToUtf8(build.size() > 2 ? build.substr(build.size() - 2) : build);
}

}  // namespace kv
