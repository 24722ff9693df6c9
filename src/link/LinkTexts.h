#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Words that several libraries say, or know again.
namespace kv {

// "MI 0..59", and "MI 0" for a single operand.
[[nodiscard]] std::string RangeText(std::string_view name, std::int64_t first, std::int64_t last);

}  // namespace kv
