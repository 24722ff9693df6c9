#include "dataview/operands/RegionTransfer.h"

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>

#include "base/Numbers.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/TimerText.h"
#include "dataview/operands/TypeTable.h"
#include "dataview/operands/ValueRange.h"
#include "dataview/operands/mdlFloatHandling.h"
#include "link/ControllerErrorText.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

using Texts = std::vector<std::string>;
using ReadResult = std::expected<Texts, LinkError>;
using WriteResult = std::expected<void, LinkError>;

constexpr std::size_t kNumbersOfTimerOrCounter = 3;

std::string Doing(std::string_view verb, const Region& region) {
  return std::string(verb) + " " + RegionText(region);
}

LinkError NoSuchRegion(std::string_view verb, const Region& region) {
  return {.code = LinkErrorCode::BadArgument,
          .doing = Doing(verb, region),
          .happened = "no controller can be asked for this region",
          .cause =
              "its type is unknown, an address is not from 0 to 32767, or it has more operands than one request "
              "carries (" +
              std::to_string(MaxOperandsPerRequest(region.type)) + ")",
          .cure = "define the region anew"};
}

LinkError NotInList(const Region& region) {
  return {.code = LinkErrorCode::NotSupported,
          .doing = Doing("reading", region),
          .happened = "operands of this type cannot be read from this model",
          .cause = "the model is read with list reads, which do not know this type",
          .cure = "select the model Q50 or Q50Net, or remove the regions of this type"};
}

// What the channel has found, with a cure for somebody who works with regions.
LinkError ChannelError(Channel& channel, const Region& region, std::string_view model) {
  LinkError error = channel.LastError();
  if (error.controllerCode == kPastEndCode) error.cure = PastEndCure(region, model);
  return error;
}

LinkError WrongReply(const Region& region) {
  return {.code = LinkErrorCode::Damaged,
          .doing = Doing("reading", region),
          .happened = "the number of values in the reply is not that of the request",
          .cause = "the reply was damaged on its way",
          .cure = "read again; if it happens again, keep the trace for an error report"};
}

LinkError BadText(const Region& region, std::size_t index, const std::string& text) {
  return {.code = LinkErrorCode::BadArgument,
          .doing = Doing("writing", region),
          .happened = "\"" + text + "\" is no value for " +
                      OperandText(region.type, region.from + static_cast<std::int64_t>(index)) +
                      "; nothing was written",
          .cause = "the text is not of the form that this type takes, or out of its range",
          .cure = "correct the value and write again"};
}

LinkError WrongNumberOfTexts(const Region& region, std::size_t count) {
  return {.code = LinkErrorCode::BadArgument,
          .doing = Doing("writing", region),
          .happened = std::to_string(count) + " values were given for " + std::to_string(region.Count()) +
                      " operands; nothing was written",
          .cause = "the region has not been read or filled in completely",
          .cure = "read the region, or enter a value for each of its operands"};
}

bool IsRequest(const Region& region) {
  constexpr std::int32_t kLastAddress = std::numeric_limits<std::int16_t>::max();
  return region.from >= 0 && region.to <= kLastAddress && FitsOneRequest(region);
}

// What a channel operation needs besides its values. The region has been found to be a request.
struct Request {
  Channel& channel;
  const Region& region;
  const TypeFacts& facts;
  std::string_view model;
  std::uint8_t unit;
  FloatDigits digits = FloatDigits::Shown;

  [[nodiscard]] std::int16_t Start() const { return static_cast<std::int16_t>(region.from); }
  [[nodiscard]] std::size_t Count() const { return static_cast<std::size_t>(region.Count()); }
};

// ---- reading ----

// Made in its place: on line tens of thousands come a second.
void AddWhole(Texts& texts, std::integral auto number) {
  std::array<char, 12> digits;  // of each number of 32 bits, with its sign
  texts.emplace_back(digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr);
}

void AddRaw(Texts& texts, RawKind kind, std::uint32_t bits, FloatDigits digits) {
  switch (kind) {
    case RawKind::Bit:
      return AddWhole(texts, bits & 1U);
    case RawKind::Signed16:
      return AddWhole(texts, static_cast<std::int16_t>(bits & 0xFFFF));
    case RawKind::Signed32:
      return AddWhole(texts, static_cast<std::int32_t>(bits));
    case RawKind::Unsigned:
      return AddWhole(texts, bits);
    case RawKind::Float: {
      const float value = mdlFloatHandling::FloatFromController(bits);
      texts.push_back(digits == FloatDigits::Exact ? ExactFloatText(value) : FloatText(value));
      return;
    }
    case RawKind::Time:
      texts.push_back(TimerText(static_cast<std::int32_t>(bits)));
      return;
  }
}

// The texts of `count` operands, from values of which each operand has `stride` and shows the one at `part`.
ReadResult ListTexts(const Request& request, const OperandListValues& values) {
  const std::int32_t code = request.facts.driverTypeCode;
  const bool isTriple = code == kDriverTypeTimers || code == kDriverTypeCounters;
  const std::size_t stride = isTriple ? kNumbersOfTimerOrCounter : 1;
  if (values.size() != request.Count() * stride) return std::unexpected(WrongReply(request.region));
  Texts texts;
  texts.reserve(request.Count());
  for (auto i = static_cast<std::size_t>(request.facts.part); i < values.size(); i += stride) {
    AddRaw(texts, request.facts.raw, values[i], request.digits);
  }
  return texts;
}

ReadResult ReadByList(const Request& request) {
  if (request.facts.driverTypeCode == 0) return std::unexpected(NotInList(request.region));
  const std::array records = {OperandListRequest{.driverTypeCode = request.facts.driverTypeCode,
                                                 .start = request.region.from,
                                                 .count = static_cast<std::int32_t>(request.Count())}};
  const auto lists = request.channel.ReadOperandList(records, request.unit);
  if (!lists) return std::unexpected(ChannelError(request.channel, request.region, request.model));
  if (lists->size() != records.size()) return std::unexpected(WrongReply(request.region));
  return ListTexts(request, lists->front());
}

// The decimal texts of what a typed read of the compact family returned.
struct ReadCompactWith {
  const Request& request;

  ReadResult operator()(std::monostate) const { return Texts(); }
  ReadResult operator()(BitRead read) const {
    return Collect(read, [](std::uint8_t bit) { return bit & 1; });
  }
  ReadResult operator()(WordRead read) const {
    return Collect(read, [](std::int16_t word) { return word; });
  }
  ReadResult operator()(TimerRead read) const {
    return Collect(read, [](std::uint16_t word) { return CompactTimerMilliseconds(word); });
  }

 private:
  template <typename Read, typename NumberOf>
  ReadResult Collect(Read read, NumberOf numberOf) const {
    const auto count = static_cast<std::int16_t>(request.Count());
    const auto values = (request.channel.*read)(request.Start(), count, request.unit);
    if (!values) return std::unexpected(ChannelError(request.channel, request.region, request.model));
    if (values->size() != request.Count()) return std::unexpected(WrongReply(request.region));
    Texts texts;
    texts.reserve(values->size());
    for (const auto value : *values) AddWhole(texts, numberOf(value));
    return texts;
  }
};

// ---- writing ----

// Converts all texts, then hands them to the type's write operation.
struct WriteWith {
  const Request& request;
  std::span<const std::string> texts;

  WriteResult operator()(std::monostate) const { return {}; }
  WriteResult operator()(BitWrite write) const { return SendWhole<std::uint8_t>(write); }
  WriteResult operator()(WordWrite write) const { return SendWhole<std::int16_t>(write); }
  WriteResult operator()(LongWrite write) const { return SendWhole<std::int32_t>(write); }
  WriteResult operator()(UnsignedWrite write) const {
    return Send<FixedPoint>(write, [this](const std::string& text) { return UnsignedOf(text); });
  }
  WriteResult operator()(FloatWrite write) const {
    return Send<std::uint32_t>(write, [](const std::string& text) {
      return ParseSingle(text).transform(mdlFloatHandling::ControllerFromFloat);
    });
  }

 private:
  [[nodiscard]] std::optional<std::int64_t> WholeOf(const std::string& text) const {
    return WholeValueInRange(request.region.type, text);
  }

  [[nodiscard]] std::optional<FixedPoint> UnsignedOf(const std::string& text) const {
    if (!IsTimeType(request.region.type)) return WholeOf(text).transform(FixedPoint::FromInteger);
    return ParseTime(text, request.model).transform([](std::int32_t time) { return FixedPoint::FromInteger(time); });
  }

  // The range of the type is that of `Integer`, so the cast keeps every value.
  template <typename Integer, typename Write>
  WriteResult SendWhole(Write write) const {
    return Send<Integer>(write, [this](const std::string& text) {
      return WholeOf(text).transform([](std::int64_t value) { return static_cast<Integer>(value); });
    });
  }

  template <typename Value, typename Write, typename Convert>
  WriteResult Send(Write write, Convert convert) const {
    std::vector<Value> values;
    values.reserve(texts.size());
    for (const std::string& text : texts) {
      const std::optional<Value> value = convert(text);
      if (!value) return std::unexpected(BadText(request.region, values.size(), text));
      values.push_back(*value);
    }
    if (!(request.channel.*write)(request.Start(), values, request.unit)) {
      return std::unexpected(ChannelError(request.channel, request.region, request.model));
    }
    return {};
  }
};

}  // namespace

std::string PastEndCure(const Region& region, std::string_view model) {
  const std::int32_t count = OperandCount(region.type, model);
  const std::string remove = "remove the region";
  return count == 0 ? remove : remove + ", and add it anew with addresses from 0 to " + std::to_string(count - 1);
}

bool IsReadableFrom(std::string_view model, OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  if (facts == nullptr) return false;
  if (IsCompactDriverModel(model)) return !std::holds_alternative<std::monostate>(facts->compactRead);
  return facts->driverTypeCode != 0;
}

ReadResult ReadRegion(Channel& channel, std::string_view model, const Region& region, FloatDigits digits) {
  if (!IsRequest(region)) return std::unexpected(NoSuchRegion("reading", region));
  const TypeFacts& facts = *TypeFactsOf(region.type);
  const Request request{channel, region, facts, model, channel.UnitID(), digits};
  if (IsCompactDriverModel(model)) return std::visit(ReadCompactWith{request}, facts.compactRead);
  return ReadByList(request);
}

WriteResult WriteRegion(Channel& channel, std::string_view model, const Region& region,
                        std::span<const std::string> texts) {
  if (!IsRequest(region)) return std::unexpected(NoSuchRegion("writing", region));
  const TypeFacts& facts = *TypeFactsOf(region.type);
  if (!IsWritableType(region.type)) return {};
  if (texts.size() != static_cast<std::size_t>(region.Count())) {
    return std::unexpected(WrongNumberOfTexts(region, texts.size()));
  }
  const Request request{channel, region, facts, model, channel.UnitID()};
  return std::visit(WriteWith{request, texts}, facts.write);
}

}  // namespace kv::mdlDataTypesView
