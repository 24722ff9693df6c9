#include "desktop/RemainingTime.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace kv {

namespace {

constexpr Duration kFirstJudgement = std::chrono::seconds(1);
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;

struct AgeUnit {
  Duration length;
  std::string_view name;
};
constexpr std::array kAgeUnits{AgeUnit{std::chrono::hours(24), " d"}, AgeUnit{std::chrono::hours(1), " h"},
                               AgeUnit{std::chrono::minutes(1), " min"}, AgeUnit{std::chrono::seconds(1), " s"}};

}  // namespace

std::string SpanText(std::chrono::seconds span) {
  const std::int64_t seconds = span.count();
  if (seconds < kMinute) return std::to_string(seconds) + " s";
  if (seconds < kHour) return std::to_string(seconds / kMinute) + " min " + std::to_string(seconds % kMinute) + " s";
  return std::to_string(seconds / kHour) + " h " + std::to_string(seconds % kHour / kMinute) + " min";
}

std::string AgeText(Duration age) {
  const auto unit = std::ranges::find_if(kAgeUnits, [age](const AgeUnit& u) { return age >= u.length; });
  if (unit == kAgeUnits.end()) return "0 s";
  return std::to_string(age / unit->length) + std::string(unit->name);
}

std::string RemainingTime::Text(std::uint64_t done, std::uint64_t total) const {
  if (!mStart || done == 0 || done >= total) return "";
  const Duration passed = mPacer.Now() - *mStart;
  if (passed < kFirstJudgement) return "";
  const double seconds = std::chrono::duration<double>(passed).count();
  const double left = seconds * static_cast<double>(total - done) / static_cast<double>(done);
  return "about " + SpanText(std::chrono::seconds(static_cast<std::int64_t>(std::ceil(left)))) + " left";
}

}  // namespace kv
