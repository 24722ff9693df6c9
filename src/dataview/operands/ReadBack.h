#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/operands/Region.h"
#include "link/Channel.h"
#include "link/LinkError.h"

// Reads operands back that have just been written: a controller that only says that it has written is found out.
namespace kv::mdlDataTypesView {

// An operand that reads another value than was written to it.
struct ValueDifference {
  std::int32_t address = 0;
  std::string written;
  std::string readBack;
};

struct ReadBackValues {
  std::vector<std::string> texts;  // as the region reads now
  std::vector<ValueDifference> differences;
};

// Reads the region, one request, and compares it with the raw texts that were written to it.
[[nodiscard]] std::expected<ReadBackValues, LinkError> ReadBack(Channel& channel, std::string_view model,
                                                                const Region& region,
                                                                std::span<const std::string> written);

// Whether a text read back means the value that was written, however it was written ("007", "1e3", "1:30").
[[nodiscard]] bool IsSameValue(OperandTypeCode type, std::string_view model, std::string_view written,
                               std::string_view readBack);

// The current value of a timer that runs changes by itself: a difference does not show that a write failed.
[[nodiscard]] bool MovesByItself(OperandTypeCode type);

// "MI 3 reads 7 instead of 5, MI 4 reads 0 instead of 1": the first three, and how many more there are.
[[nodiscard]] std::string DifferenceText(OperandTypeCode type, std::span<const ValueDifference> differences);
inline constexpr std::string_view kDifferenceCause =
    "the controller's program changes what it holds, or the write did not take";
inline constexpr std::string_view kMovingCause =
    "the timer runs, so its current value changes by itself, or the write did not take";
inline constexpr std::string_view kDifferenceCure = "read again, and see what the program does with these operands";

}  // namespace kv::mdlDataTypesView
