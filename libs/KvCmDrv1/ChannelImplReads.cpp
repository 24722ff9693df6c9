#include <algorithm>
#include <array>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "link/BlockOperations.h"
#include "link/LinkTexts.h"

namespace kv {
namespace {

constexpr std::int64_t kHighestAddress = 0xFFFF;
constexpr std::size_t kEcho = 16;           // letters, tag, type, start, count
constexpr std::size_t kMessageFrame = 100;  // around a request and its reply

std::string Reading(const OperandRange& range, std::uint8_t unit) {
  return "reading " + RangeText(range) + " from unit " + std::to_string(unit);
}

std::string ListPayload(std::span<const OperandRange> ranges) {
  constexpr std::size_t kRecord = 20;  // 0, type, start, count, 0
  std::string payload(ranges.size() * kRecord, '\0');
  char* record = payload.data();
  for (const OperandRange& range : ranges) {
    PutLittleEndian(record + 4, static_cast<std::uint32_t>(range.type->code), 4);
    PutLittleEndian(record + 8, range.start, 4);
    PutLittleEndian(record + 12, range.count, 4);
    record += kRecord;
  }
  return payload;
}

}  // namespace

std::string RangeText(const OperandRange& range) {
  return RangeText(range.type->name, range.start, range.start + range.count - 1);
}

std::optional<OperandRange> ChannelImpl::CheckedRange(std::int32_t code, std::int64_t start, std::int64_t count,
                                                      std::string_view verb) {
  const OperandType* type = FindOperandType(code);
  const bool isAddress = start >= 0 && start <= kHighestAddress;
  if (type != nullptr && isAddress && count >= 1 && count <= type->maxPerRequest &&
      start + count - 1 <= kHighestAddress) {
    return OperandRange{type, static_cast<std::uint16_t>(start), static_cast<std::uint16_t>(count)};
  }
  if (type == nullptr) {
    FailArgument("the protocol has no operands of this type",
                 std::string(verb) + " operands of type " + std::to_string(code));
  } else if (!isAddress) {
    FailArgument("the address " + std::to_string(start) + " does not exist",
                 std::string(verb) + " " + std::string(type->name));
  } else {
    FailArgument(
        "a count of " + std::to_string(count) + "; one request takes 1 to " + std::to_string(type->maxPerRequest),
        std::string(verb) + " " + std::string(type->name));
  }
  return std::nullopt;
}

std::optional<OperandListValues> ChannelImpl::ReadRange(const OperandRange& range, std::uint8_t unit,
                                                        std::optional<Instant> notAfter) {
  const auto doing = [&] { return Reading(range, unit); };
  const std::uint16_t tag = mClient.NextTag();
  const std::size_t length = kEcho + range.count * DigitsOf(range.type->shape);
  const auto reply = Ask({unit, mWriter.ReadOperands(unit, tag, range), TaggedRead(length), notAfter}, doing);
  if (!reply) return std::nullopt;
  std::optional<OperandListValues> values = ReadOperandValues(*reply, tag, range);
  if (values) {
    Succeed();
  } else {
    FailMalformed(doing());
  }
  return values;
}

std::optional<std::vector<OperandListValues>> ChannelImpl::ReadOperandList(std::span<const OperandListRequest> records,
                                                                           std::uint8_t unit) {
  if (records.empty() || records.size() > kMaxRecordsPerRequest) {
    FailArgument(
        std::to_string(records.size()) + " records; one request takes 1 to " + std::to_string(kMaxRecordsPerRequest),
        "reading a list of operands");
    return std::nullopt;
  }
  std::vector<OperandRange> ranges;
  ranges.reserve(records.size());
  bool fitsBlock = true;
  for (const OperandListRequest& record : records) {
    const auto range = CheckedRange(record.driverTypeCode, record.start, record.count, "reading");
    if (!range) return std::nullopt;
    fitsBlock = fitsBlock && record.driverTypeCode < kFirstAsciiOnlyCode;
    ranges.push_back(*range);
  }
  // A request that is alone has a deadline of its own; the handshake must not add to it.
  const bool isAlone = mClient.HasHandshake(unit);
  const Instant start = isAlone ? Instant() : mPacer.Now() + mClient.RestartRest(unit);
  if (!isAlone) {
    if (const auto done = mClient.EnsureHandshake(unit); !done) {
      Fail(done.error(), Reading(ranges.front(), unit));
      return std::nullopt;
    }
  }
  const bool isBlock = fitsBlock && !mClient.Unit(unit).isAsciiOnly;
  std::optional<Instant> notAfter;
  if (!isAlone) {
    notAfter = start + Longest(isBlock ? 1 : ranges.size(), ranges.size() * (kMaxValueDigits + kMessageFrame));
  }
  if (isBlock) return ReadBlockList(ranges, unit, notAfter);

  std::vector<OperandListValues> lists;
  lists.reserve(ranges.size());
  for (const OperandRange& range : ranges) {
    std::optional<OperandListValues> values = ReadRange(range, unit, notAfter);
    if (!values) return std::nullopt;
    lists.push_back(std::move(*values));
  }
  return lists;
}

std::optional<std::vector<OperandListValues>> ChannelImpl::ReadBlockList(std::span<const OperandRange> ranges,
                                                                         std::uint8_t unit,
                                                                         std::optional<Instant> notAfter) {
  std::string names = "reading";
  const auto doing = [&] {
    for (std::string_view before = " "; const OperandRange& range : ranges) {
      names.append(before).append(RangeText(range));
      before = ", ";
    }
    return names + " from unit " + std::to_string(unit);
  };
  const std::string payload = ListPayload(ranges);
  const auto reply = mClient.SendBlock({.unit = unit,
                                        .fields = {.opCode = BlockOperation::kOperandList,
                                                   .param1 = 0,
                                                   .dataLength = static_cast<std::uint32_t>(ranges.size()),
                                                   .param3 = 0,
                                                   .param4 = 0},
                                        .payload = payload,
                                        .replyPayload = kMaxValueDigits * ranges.size(),
                                        .notAfter = notAfter});
  if (!reply) {
    Fail(reply.error(), doing());
    return std::nullopt;
  }
  if (FailedStatus(reply->status, doing)) return std::nullopt;
  std::optional<std::vector<OperandListValues>> lists = ReadListPayload(reply->payload, ranges);
  if (lists) {
    Succeed();
  } else {
    FailMalformed(doing());
  }
  return lists;
}

template <typename Value>
std::optional<std::vector<Value>> ChannelImpl::ReadTyped(std::int32_t code, std::int16_t start, std::int16_t count,
                                                         std::uint8_t unit) {
  const auto range = CheckedRange(code, start, count, "reading");
  if (!range) return std::nullopt;
  const std::optional<OperandListValues> numbers = ReadRange(*range, unit);
  if (!numbers) return std::nullopt;
  std::vector<Value> values(numbers->size());
  std::ranges::transform(*numbers, values.begin(), [](std::uint32_t number) { return static_cast<Value>(number); });
  return values;
}

Channel::BitValues ChannelImpl::ReadMB(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint8_t>(OperandCode::MB, start, count, unit);
}

Channel::BitValues ChannelImpl::ReadSB(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint8_t>(OperandCode::SB, start, count, unit);
}

Channel::BitValues ChannelImpl::ReadInputs(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint8_t>(OperandCode::Input, start, count, unit);
}

Channel::BitValues ChannelImpl::ReadOutputs(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint8_t>(OperandCode::Output, start, count, unit);
}

Channel::BitValues ChannelImpl::ReadTimerBits(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint8_t>(OperandCode::TimerBit, start, count, unit);
}

Channel::WordValues ChannelImpl::ReadMI(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::int16_t>(OperandCode::MI, start, count, unit);
}

Channel::WordValues ChannelImpl::ReadSI(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::int16_t>(OperandCode::SI, start, count, unit);
}

Channel::WordValues ChannelImpl::ReadDBI(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::int16_t>(OperandCode::DBI, start, count, unit);
}

Channel::TimerWords ChannelImpl::ReadTimerPresets(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint16_t>(OperandCode::TimerPresetWord, start, count, unit);
}

Channel::TimerWords ChannelImpl::ReadTimerCurrents(std::int16_t start, std::int16_t count, std::uint8_t unit) {
  return ReadTyped<std::uint16_t>(OperandCode::TimerCurrentWord, start, count, unit);
}

}  // namespace kv
