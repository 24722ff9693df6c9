#include "journal/JournalTime.h"

#include "base/DateText.h"
#include "base/Numbers.h"

namespace kv {

using namespace std::chrono;

std::string JournalTime(const WallClock& clock) {
  const auto moment = floor<milliseconds>(clock.LocalMoment());
  const auto second = floor<seconds>(moment);
  return DateText(second) + "T" + TimeOfDayText(second) + "." + PaddedInteger((moment - second).count(), 3) +
         UtcOffsetText(clock.UtcOffset());
}

std::optional<sys_time<milliseconds>> ParseJournalTime(std::string_view text) {
  constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:dd.ddd+dd:dd";
  if (text.size() != kForm.size()) return std::nullopt;
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    const bool isSign = kForm[i] == '+' && text[i] == '-';
    if (kForm[i] == 'd' ? !isDigit : text[i] != kForm[i] && !isSign) return std::nullopt;
  }
  const auto number = [text](std::size_t at, std::size_t digits) {
    int value = 0;
    for (const char digit : text.substr(at, digits)) value = value * 10 + (digit - '0');
    return value;
  };
  const year_month_day date{year{number(0, 4)}, month{static_cast<unsigned>(number(5, 2))},
                            day{static_cast<unsigned>(number(8, 2))}};
  const bool isTimeOfDay = number(11, 2) < 24 && number(14, 2) < 60 && number(17, 2) < 60;
  if (!date.ok() || !isTimeOfDay || number(27, 2) >= 60) return std::nullopt;
  const auto offset = hours{number(24, 2)} + minutes{number(27, 2)};
  const auto local = sys_days{date} + hours{number(11, 2)} + minutes{number(14, 2)} + seconds{number(17, 2)} +
                     milliseconds{number(20, 3)};
  return text[23] == '-' ? local + offset : local - offset;
}

}  // namespace kv
