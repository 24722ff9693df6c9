#include "desktop/PacerWallClock.h"

#include <ctime>

namespace kv {

std::chrono::local_seconds PacerWallClock::LocalTime() const {
  using namespace std::chrono;
  const std::time_t now = system_clock::to_time_t(system_clock::now());
  std::tm fields{};
#ifdef _WIN32
  localtime_s(&fields, &now);
#else
  localtime_r(&now, &fields);
#endif
  const year_month_day date{year{fields.tm_year + 1900}, month{static_cast<unsigned>(fields.tm_mon + 1)},
                            day{static_cast<unsigned>(fields.tm_mday)}};
  return local_seconds{local_days{date}} + hours{fields.tm_hour} + minutes{fields.tm_min} + seconds{fields.tm_sec};
}

}  // namespace kv
