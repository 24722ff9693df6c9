#include "desktop/PacerWallClock.h"

#include <ctime>

namespace kv {

std::chrono::local_time<Duration> PacerWallClock::LocalMoment() const {
  using namespace std::chrono;
  const auto moment = system_clock::now();
  const auto second = floor<seconds>(moment);
  const std::time_t now = system_clock::to_time_t(second);
  std::tm fields{};
#ifdef _WIN32
  localtime_s(&fields, &now);
#else
  localtime_r(&now, &fields);
#endif
  const year_month_day date{year{fields.tm_year + 1900}, month{static_cast<unsigned>(fields.tm_mon + 1)},
                            day{static_cast<unsigned>(fields.tm_mday)}};
  return local_seconds{local_days{date}} + hours{fields.tm_hour} + minutes{fields.tm_min} + seconds{fields.tm_sec} +
         duration_cast<Duration>(moment - second);
}

std::chrono::minutes PacerWallClock::UtcOffset() const {
  using namespace std::chrono;
  const auto utc = system_clock::now().time_since_epoch();
  return round<minutes>(LocalMoment().time_since_epoch() - utc);
}

}  // namespace kv
