#include "desktop/RemainingTime.h"

#include <cmath>

namespace kv {

namespace {

constexpr Duration kFirstJudgement = std::chrono::seconds(1);
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;

}  // namespace

std::string SpanText(std::chrono::seconds span) {
  const std::int64_t seconds = span.count();
  if (seconds < kMinute) return std::to_string(seconds) + " s";
  if (seconds < kHour) return std::to_string(seconds / kMinute) + " min " + std::to_string(seconds % kMinute) + " s";
  return std::to_string(seconds / kHour) + " h " + std::to_string(seconds % kHour / kMinute) + " min";
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
