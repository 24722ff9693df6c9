#include "simulator/OsVersion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/Numbers.h"

namespace sim {
namespace {

std::vector<std::string_view> SplitAtPoints(std::string_view text) {
  std::vector<std::string_view> groups;
  for (;;) {
    const std::size_t point = text.find('.');
    groups.push_back(text.substr(0, point));
    if (point == std::string_view::npos) return groups;
    text.remove_prefix(point + 1);
  }
}

bool IsDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

std::string TwoDigits(int number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

}  // namespace

bool IsOsNumber(const Model& model, std::string_view number) {
  const auto groups = SplitAtPoints(number);
  const bool rightCount = model.versionStyle == VersionStyle::Fields ? groups.size() == 2 : groups.size() <= 4;
  return rightCount && std::ranges::all_of(groups, [](auto group) { return group.size() <= 3 && IsDigits(group); });
}

std::string ReportedVersion(const Model& model, const OsVersion& os) {
  if (model.versionStyle == VersionStyle::Digits) return os.number;
  return "HW 1.0;BT 1.2;FL 2.0;O/S " + os.number + ";";
}

std::string ReportedBuild(const Model& model, const OsVersion& os) {
  if (model.versionStyle == VersionStyle::Digits) return TwoDigits(os.build);
  return "B" + TwoDigits(os.build) + ";";
}

int VersionNumber(const OsVersion& os) {
  std::string digits = os.number;
  std::erase(digits, '.');
  constexpr std::int64_t kMost = 999'999'999;
  return static_cast<int>(std::min(kv::ParseInteger(digits).value_or(0), kMost));
}

bool HasOlderOperandCounts(const Model& model, std::string_view number) {
  if (model.versionStyle == VersionStyle::Fields) {
    const auto groups = SplitAtPoints(number);
    return kv::ParseInteger(groups[0]).value_or(0) * 1000 + kv::ParseInteger(groups[1]).value_or(0) < 1001;
  }
  return VersionNumber({std::string(number)}) < 300;
}

}  // namespace sim
