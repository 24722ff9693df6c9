#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Numbers as users and spreadsheets write them into a grid: blanks around them and a leading "+" are fine.
namespace kv::mdlDataTypesView {

// A number that is whole, however it is written ("12", "12.0", "1.2e1"); nothing for any other text and past 2^53,
// where a decimal fraction is no longer exact.
[[nodiscard]] std::optional<std::int64_t> ParseWholeNumber(std::string_view text);

// A number that a single-precision float can hold.
[[nodiscard]] std::optional<float> ParseSingle(std::string_view text);

// "nan", "inf" or "-inf": what a controller tells of a float that is no number.
[[nodiscard]] bool IsNoNumber(std::string_view text);

}  // namespace kv::mdlDataTypesView
