#include "KvCmDrv1/wire/Replies.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/FieldReader.h"
#include "KvCmDrv1/wire/Requests.h"
#include "base/Bytes.h"
#include "base/Hex.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

constexpr std::size_t kLetters = 2;
constexpr std::size_t kMaxValueBytes = kMaxValueDigits / 2;

FieldReader Begin(std::string_view reply, std::string_view letters, std::uint16_t tag) {
  FieldReader reader(reply);
  reader.Expect(letters);
  reader.ExpectHex(tag, kTagDigits);
  return reader;
}

void ExpectRange(FieldReader& reader, const OperandRange& range) {
  reader.ExpectHex(static_cast<std::uint32_t>(range.type->code), 2);
  reader.ExpectHex(range.start, 4);
  reader.ExpectHex(range.count, 4);
}

// Takes binary numbers from the front of bytes that are known to be enough.
template <std::endian kOrder>
class NumberReader {
 public:
  explicit NumberReader(std::span<const std::byte> bytes) : mNext(bytes.data()) {}

  template <std::size_t kBytes>
  std::uint32_t Number() {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < kBytes; ++i) {
      const std::size_t at = kOrder == std::endian::big ? i : kBytes - 1 - i;
      value = value << 8 | std::to_integer<std::uint32_t>(mNext[at]);
    }
    mNext += kBytes;
    return value;
  }

 private:
  const std::byte* mNext;
};
using TextReader = NumberReader<std::endian::big>;  // of the bytes that digits stand for
using PayloadReader = NumberReader<std::endian::little>;

std::size_t PayloadBytes(const OperandRange& range) {
  const std::size_t count = range.count;
  switch (range.type->shape) {
    case OperandShape::Bit:
      return (count + 7) / 8;
    case OperandShape::Word:
      return 2 * count;
    case OperandShape::Long:
      return 4 * count;
    case OperandShape::Timer:
      return 9 * count;
    case OperandShape::Counter:
      return 5 * count;
  }
  return 0;
}

constexpr std::size_t kBitsOfHalf = 4;
using HalfByte = std::array<std::uint32_t, kBitsOfHalf>;

// The bits of half a byte, lowest first, so that four values are put at once.
constexpr std::array<HalfByte, 1U << kBitsOfHalf> MakeHalves() {
  std::array<HalfByte, 1U << kBitsOfHalf> halves{};
  for (std::uint32_t half = 0; half < halves.size(); ++half) {
    for (std::size_t bit = 0; bit < kBitsOfHalf; ++bit) halves[half][bit] = half >> bit & 1U;
  }
  return halves;
}

constexpr std::array<HalfByte, 1U << kBitsOfHalf> kHalves = MakeHalves();

// False when the bits that fill the last byte are not 0.
bool TakeBits(PayloadReader& reader, std::size_t count, OperandListValues& values) {
  constexpr std::size_t kBitsOfByte = 2 * kBitsOfHalf;
  values.resize(count);
  std::span<std::uint32_t> rest(values);
  for (; rest.size() >= kBitsOfByte; rest = rest.subspan(kBitsOfByte)) {
    const std::uint32_t byte = reader.Number<1>();
    std::ranges::copy(kHalves[byte % kHalves.size()], rest.begin());
    std::ranges::copy(kHalves[byte / kHalves.size()], rest.begin() + kBitsOfHalf);
  }
  if (rest.empty()) return true;
  std::uint32_t byte = reader.Number<1>();
  for (std::uint32_t& value : rest) {
    value = byte & 1U;
    byte >>= 1;
  }
  return byte == 0;
}

// The same where each bit takes a byte; false when one of them is neither 0 nor 1.
bool TakeBits(TextReader& reader, std::size_t count, OperandListValues& values) {
  values.resize(count);
  std::uint32_t all = 0;
  for (std::uint32_t& value : values) all |= value = reader.Number<1>();
  return all <= 1;
}

template <std::size_t kBytes>
bool TakeNumbers(auto& reader, std::size_t count, OperandListValues& values) {
  values.resize(count);
  for (std::uint32_t& value : values) value = reader.template Number<kBytes>();
  return true;
}

// False when a timer's or counter's bit is none.
template <std::size_t kBytes>
bool TakeTriples(auto& reader, std::size_t count, OperandListValues& values) {
  values.reserve(3 * count);
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(reader.template Number<kBytes>());
    values.push_back(reader.template Number<kBytes>());
    values.push_back(reader.template Number<1>());
    if (values.back() > 1) return false;
  }
  return true;
}

bool TakeRange(auto& reader, const OperandRange& range, OperandListValues& values) {
  const OperandShape shape = range.type->shape;
  switch (shape) {
    case OperandShape::Bit:
      return TakeBits(reader, range.count, values);
    case OperandShape::Word:
      return TakeNumbers<2>(reader, range.count, values);
    case OperandShape::Long:
      return TakeNumbers<4>(reader, range.count, values);
    case OperandShape::Timer:
      return TakeTriples<4>(reader, range.count, values);
    case OperandShape::Counter:
      return TakeTriples<2>(reader, range.count, values);
  }
  return false;
}

}  // namespace

std::optional<int> ReadRefusal(std::string_view reply, std::string_view request) {
  FieldReader reader(reply);
  reader.Expect(request.substr(0, kLetters));
  reader.Expect("ERROR");
  const std::uint32_t code = reader.Hex(2);
  if (!reader.GoodToTheEnd() || code == 0) return std::nullopt;
  return static_cast<int>(code);
}

bool EchoesTag(std::string_view reply, std::string_view request) {
  constexpr std::size_t kEcho = kLetters + kTagDigits;
  return reply.size() >= kEcho && reply.substr(0, kEcho) == request.substr(0, kEcho);
}

std::optional<VersionInfo> ReadIdentification(std::string_view reply) {
  FieldReader reader(reply);
  reader.Expect("ID");
  if (!reader.Good() || std::ranges::count(reader.Rest(), '|') != 3) return std::nullopt;
  std::string_view rest = reader.Rest();
  const auto next = [&rest] {
    const std::size_t end = std::min(rest.find('|'), rest.size());
    std::string field(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
  };
  VersionInfo info;
  info.model = next();
  info.hardwareCode = next();
  info.osVersion = next();
  info.osBuild = next();
  return info;
}

std::optional<Channel::ControllerInfo> ReadInformation(std::string_view reply, std::uint16_t tag) {
  constexpr std::string_view kStates = "RSBL";
  FieldReader reader = Begin(reply, "IN", tag);
  Channel::ControllerInfo info;
  info.serialNumber = reader.Hex(8);
  const std::string_view state = reader.Take(1);
  const std::string_view name = reader.Rest();
  if (!reader.Good() || kStates.find(state) == std::string_view::npos || name.size() > 2 * kLongestProjectName) {
    return std::nullopt;
  }
  Bytes bytes(name.size() / 2);
  if (!UpperHexToBytes(name, bytes)) return std::nullopt;
  info.state = state.front();
  info.projectName.assign(bytes.begin(), bytes.end());
  return info;
}

bool ReadsAccessGiven(std::string_view reply, std::uint16_t tag) {
  FieldReader reader = Begin(reply, "AC", tag);
  reader.Expect("OK");
  return reader.GoodToTheEnd();
}

std::optional<OperandListValues> ReadOperandValues(std::string_view reply, std::uint16_t tag,
                                                   const OperandRange& range) {
  FieldReader reader = Begin(reply, "RO", tag);
  ExpectRange(reader, range);
  const OperandShape shape = range.type->shape;
  const std::size_t length = range.count * DigitsOf(shape) / 2;
  std::array<std::uint8_t, kMaxValueBytes> buffer;
  if (!reader.Good() || length > buffer.size()) return std::nullopt;
  if (!UpperHexToBytes(reader.Rest(), std::span(buffer).first(length))) return std::nullopt;

  TextReader numbers(std::as_bytes(std::span(buffer)));
  OperandListValues values;
  if (!TakeRange(numbers, range, values)) return std::nullopt;
  return values;
}

bool ReadsWriteDone(std::string_view reply, std::uint16_t tag, const OperandRange& range) {
  FieldReader reader = Begin(reply, "WO", tag);
  ExpectRange(reader, range);
  reader.Expect("OK");
  return reader.GoodToTheEnd();
}

bool ReadMemoryBytes(std::string_view reply, std::uint16_t tag, std::uint32_t address, std::span<std::uint8_t> bytes) {
  FieldReader reader = Begin(reply, "RM", tag);
  reader.ExpectHex(address, 8);
  reader.ExpectHex(static_cast<std::uint32_t>(bytes.size()), 4);
  return reader.Good() && UpperHexToBytes(reader.Rest(), bytes);
}

std::optional<SynchronisationReply> ReadSynchronisation(std::string_view reply, std::uint16_t tag) {
  constexpr std::size_t kKept = 40;
  FieldReader reader = Begin(reply, "SY", tag);
  SynchronisationReply last;
  last.counter = static_cast<std::uint16_t>(reader.Hex(4));
  last.check = reader.Hex(8);
  last.powerUp = static_cast<std::uint16_t>(reader.Hex(4));
  last.reply = reader.Rest();
  if (!reader.Good() || last.reply.size() > kKept) return std::nullopt;
  return last;
}

std::optional<std::vector<OperandListValues>> ReadListPayload(std::string_view payload,
                                                              std::span<const OperandRange> ranges) {
  std::size_t expected = 0;
  for (const OperandRange& range : ranges) expected += PayloadBytes(range);
  if (payload.size() != expected) return std::nullopt;

  PayloadReader reader(std::as_bytes(std::span(payload)));
  std::vector<OperandListValues> lists(ranges.size());
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    if (!TakeRange(reader, ranges[i], lists[i])) return std::nullopt;
  }
  return lists;
}

}  // namespace kv
