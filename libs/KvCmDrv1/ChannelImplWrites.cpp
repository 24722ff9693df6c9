#include "KvCmDrv1/ChannelImpl.h"

namespace kv {
namespace {

// The bits of a value as it travels; nothing when an unsigned value is no whole number of 32 bits.
template <typename Value>
std::optional<std::uint32_t> BitsOf(Value value) {
  return static_cast<std::uint32_t>(value);
}

template <>
std::optional<std::uint32_t> BitsOf(std::int16_t value) {
  return static_cast<std::uint16_t>(value);
}

template <>
std::optional<std::uint32_t> BitsOf(FixedPoint value) {
  const std::int64_t whole = value.Whole();
  if (!value.IsWhole() || whole < 0 || whole > 0xFFFFFFFF) return std::nullopt;
  return static_cast<std::uint32_t>(whole);
}

}  // namespace

template <typename Value>
bool ChannelImpl::WriteTyped(std::int32_t code, std::int16_t start, std::span<const Value> values, std::uint8_t unit) {
  const auto range = CheckedRange(code, start, static_cast<std::int64_t>(values.size()), "writing");
  if (!range) return false;
  const auto doing = [&] { return "writing " + RangeText(*range) + " to unit " + std::to_string(unit); };
  mNumbers.clear();
  for (const Value value : values) {
    const std::optional<std::uint32_t> bits = BitsOf(value);
    if (!bits || *bits > range->type->largest) {
      FailArgument("value " + std::to_string(mNumbers.size() + 1) + " does not fit the operand; it takes 0 to " +
                       std::to_string(range->type->largest),
                   doing());
      return false;
    }
    mNumbers.push_back(*bits);
  }
  constexpr std::size_t kReply = 18;
  const std::uint16_t tag = mClient.NextTag();
  const std::string_view text = mWriter.WriteOperands(unit, tag, *range, mNumbers);
  const auto reply = Ask({unit, text, TaggedWrite(kReply), std::nullopt}, doing);
  if (!reply) return false;
  if (!ReadsWriteDone(*reply, tag, *range)) {
    FailMalformed(doing());
    return false;
  }
  Succeed();
  return true;
}

bool ChannelImpl::WriteMB(std::int16_t start, BitSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::MB, start, values, unit);
}

bool ChannelImpl::WriteXB(std::int16_t start, BitSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::XB, start, values, unit);
}

bool ChannelImpl::WriteSB(std::int16_t start, BitSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::SB, start, values, unit);
}

bool ChannelImpl::WriteMI(std::int16_t start, WordSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::MI, start, values, unit);
}

bool ChannelImpl::WriteDBI(std::int16_t start, WordSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::DBI, start, values, unit);
}

bool ChannelImpl::WriteXI(std::int16_t start, WordSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::XI, start, values, unit);
}

bool ChannelImpl::WriteML(std::int16_t start, LongSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::ML, start, values, unit);
}

bool ChannelImpl::WriteXL(std::int16_t start, LongSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::XL, start, values, unit);
}

bool ChannelImpl::WriteDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::DW, start, values, unit);
}

bool ChannelImpl::WriteXDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::XDW, start, values, unit);
}

bool ChannelImpl::WriteCounterPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::CounterPreset, start, values, unit);
}

bool ChannelImpl::WriteCounterCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::CounterCurrent, start, values, unit);
}

bool ChannelImpl::WriteTimerPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::TimerPreset, start, values, unit);
}

bool ChannelImpl::WriteTimerCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::TimerCurrent, start, values, unit);
}

bool ChannelImpl::WriteMF(std::int16_t start, FloatWordSpan values, std::uint8_t unit) {
  return WriteTyped(OperandCode::MF, start, values, unit);
}

}  // namespace kv
