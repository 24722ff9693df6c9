#include "link/TimeOnLink.h"

#include <algorithm>
#include <chrono>

#include "desktop/RemainingTime.h"

namespace kv {

Duration TimeOnLink(const Channel& link, std::uint64_t bytes, std::uint64_t exchanges) {
  constexpr std::uint64_t kBitsOfByte = 10;  // with start and stop bit
  const auto rate = static_cast<std::uint64_t>(std::max(link.GetComParams().baudRate, 0));
  const Duration turns = link.Quality().roundTrip * static_cast<std::int64_t>(exchanges);
  if (rate == 0) return turns;
  const std::uint64_t microseconds = bytes * kBitsOfByte * std::micro::den / rate;
  return turns + Duration(static_cast<Duration::rep>(microseconds));
}

std::string TimeOnLinkText(Duration about) {
  return SpanText(std::max(std::chrono::ceil<std::chrono::seconds>(about), std::chrono::seconds(1)));
}

}  // namespace kv
