#pragma once

#include <compare>
#include <cstdint>

namespace kv {

// A signed 64-bit number with four decimal places. Values of unsigned 32-bit operands travel in it, because
// 4294967295 does not fit a signed 32-bit integer, and tools hand such values over in this form.
class FixedPoint {
 public:
  static constexpr std::int64_t kScale = 10000;

  constexpr FixedPoint() = default;
  [[nodiscard]] static constexpr FixedPoint FromInteger(std::int64_t whole) { return FixedPoint(whole * kScale); }

  // The whole part, cut towards zero.
  [[nodiscard]] constexpr std::int64_t Whole() const { return mTenThousandths / kScale; }
  [[nodiscard]] constexpr bool IsWhole() const { return mTenThousandths % kScale == 0; }

  constexpr auto operator<=>(const FixedPoint&) const = default;

 private:
  explicit constexpr FixedPoint(std::int64_t tenThousandths) : mTenThousandths(tenThousandths) {}
  std::int64_t mTenThousandths = 0;
};

}  // namespace kv
