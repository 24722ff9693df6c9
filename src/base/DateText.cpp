#include "base/DateText.h"

#include "base/Numbers.h"

namespace kv {

std::string DateText(std::chrono::local_seconds time) {
  const std::chrono::year_month_day date(std::chrono::floor<std::chrono::days>(time));
  return PaddedInteger(int{date.year()}, 4) + "-" + PaddedInteger(unsigned{date.month()}, 2) + "-" +
         PaddedInteger(unsigned{date.day()}, 2);
}

std::string TimeOfDayText(std::chrono::local_seconds time) {
  const std::chrono::hh_mm_ss clock(time - std::chrono::floor<std::chrono::days>(time));
  return PaddedInteger(clock.hours().count(), 2) + ":" + PaddedInteger(clock.minutes().count(), 2) + ":" +
         PaddedInteger(clock.seconds().count(), 2);
}

std::string UtcOffsetText(std::chrono::minutes offset) {
  const auto distance = std::chrono::abs(offset).count();
  return (offset < std::chrono::minutes{0} ? "-" : "+") + PaddedInteger(distance / 60, 2) + ":" +
         PaddedInteger(distance % 60, 2);
}

}  // namespace kv
