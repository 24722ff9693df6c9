#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kv {

struct NumberRange {
  std::int64_t lowest;
  std::int64_t highest;

  [[nodiscard]] constexpr bool Holds(std::int64_t number) const { return lowest <= number && number <= highest; }
  // "1 to 10".
  [[nodiscard]] std::string Text() const { return std::to_string(lowest) + " to " + std::to_string(highest); }
};

// What every link may be set to, wherever it is asked for: window, file, link text and command line.
inline constexpr NumberRange kUnitIds{0, 255};
inline constexpr NumberRange kTimeOuts{50, 300'000};  // milliseconds
inline constexpr NumberRange kTries{1, 10};
inline constexpr std::int64_t kUsualTimeOut = 1000;  // milliseconds, for one reply, without the time on the wire
inline constexpr int kUsualTries = 3;

// What a controller keeps, in characters of Windows-1252.
inline constexpr std::size_t kLongestPassword = 8;
inline constexpr std::size_t kLongestProjectName = 20;

// Bytes of controller memory that one request reads, and of data that one block message carries.
inline constexpr std::uint32_t kMostMemoryPerRead = 4096;
inline constexpr std::size_t kMostBlockData = 1'048'576;

}  // namespace kv
