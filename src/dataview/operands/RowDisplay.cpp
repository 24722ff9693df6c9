#include "dataview/operands/RowDisplay.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>

#include "base/AnsiText.h"
#include "base/Bytes.h"
#include "base/Hex.h"
#include "base/Numbers.h"
#include "dataview/operands/NumberText.h"
#include "dataview/operands/TypeTable.h"
#include "dataview/operands/mdlFloatHandling.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::size_t kFloatUnit = 4;
constexpr std::size_t kWidestUnit = 20;  // characters of one unit and its separator, to reserve by

// How a row is cut: bytes of a unit, and the length of the runs of units that are turned round.
struct Cut {
  std::size_t unitBytes = 1;
  std::size_t run = 1;
};

bool IsBitImage(const TypeFacts& facts) {
  return facts.imageWidth == 1;
}

std::size_t RunLength(std::int32_t imageWidth, SizeCode size) {
  if (imageWidth == 4 && size == SizeCode::Bit8) return 4;
  if (imageWidth == 4 && size == SizeCode::Bit16) return 2;
  if (imageWidth == 2 && (size == SizeCode::Bit8 || size == SizeCode::Bit32)) return 2;
  return 1;
}

Cut CutOf(const TypeFacts& facts, SizeCode size, FormatCode format) {
  if (format == FormatCode::Float) return {.unitBytes = kFloatUnit, .run = 1};
  if (IsBitImage(facts) && format == FormatCode::Binary) return {};
  const auto bytes = static_cast<std::size_t>(size);
  return {.unitBytes = std::max<std::size_t>(bytes, 1), .run = RunLength(facts.imageWidth, size)};
}

Bytes ByteImage(const TypeFacts& facts, std::span<const std::string> rawValues, std::size_t unitBytes) {
  const auto width = static_cast<std::size_t>(facts.imageWidth);
  const std::size_t length = rawValues.size() * width;
  Bytes image;
  image.reserve(length + unitBytes);
  for (const std::string& text : rawValues) {
    auto value = static_cast<std::uint32_t>(ParseWholeNumber(text).value_or(0));
    for (std::size_t i = 0; i < width; ++i, value >>= 8) image.push_back(static_cast<std::uint8_t>(value & 0xFF));
  }
  image.resize((length + unitBytes - 1) / unitBytes * unitBytes);
  return image;
}

std::uint32_t UnitAt(const Bytes& image, std::size_t index, std::size_t unitBytes) {
  std::uint32_t value = 0;
  for (std::size_t i = unitBytes; i > 0; --i) value = value << 8 | image[index * unitBytes + i - 1];
  return value;
}

// Which unit stands at a position once each run of units has been turned round. A run cut short at the end is turned
// round within itself.
std::size_t SourceOf(std::size_t position, std::size_t run, std::size_t count) {
  const std::size_t first = position - position % run;
  const std::size_t last = std::min(first + run, count) - 1;
  return first + (last - position);
}

void AppendRightAligned(std::string& text, std::integral auto number, std::size_t width) {
  std::array<char, kWidestUnit> digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  const auto length = static_cast<std::size_t>(end - digits.data());
  if (length < width) text.append(width - length, ' ');
  text.append(digits.data(), length);
}

void AppendDecimal(std::string& text, std::uint32_t unit, std::size_t unitBytes) {
  switch (unitBytes) {
    case 1:
      return AppendRightAligned(text, unit, 3);
    case 2:
      return AppendRightAligned(text, static_cast<std::int16_t>(unit), 6);
    default:
      return AppendRightAligned(text, static_cast<std::int32_t>(unit), 11);
  }
}

void AppendBinary(std::string& text, std::uint32_t unit, std::size_t unitBytes) {
  for (std::size_t bit = unitBytes * 8; bit > 0; --bit) {
    text += (unit >> (bit - 1) & 1U) != 0 ? '1' : '0';
    if (bit % 4 == 1 && bit > 1) text += ' ';
  }
}

void AppendUnit(std::string& text, std::uint32_t unit, std::size_t unitBytes, FormatCode format) {
  switch (format) {
    case FormatCode::Decimal:
      return AppendDecimal(text, unit, unitBytes);
    case FormatCode::Unsigned:
      return AppendRightAligned(text, unit, 10);
    case FormatCode::Hex:
      return AppendHex(text, unit, 2 * unitBytes);
    case FormatCode::Binary:
      return AppendBinary(text, unit, unitBytes);
    default:
      return;
  }
}

std::string NumberUnits(const Bytes& image, const Cut& cut, FormatCode format) {
  const std::size_t count = image.size() / cut.unitBytes;
  std::string text;
  text.reserve(count * kWidestUnit);
  for (std::size_t position = 0; position < count; ++position) {
    if (position > 0) text += ' ';
    AppendUnit(text, UnitAt(image, SourceOf(position, cut.run, count), cut.unitBytes), cut.unitBytes, format);
  }
  return text;
}

std::string BitUnits(const Bytes& image) {
  std::string text;
  text.reserve(image.size() * 2);
  for (const std::uint8_t byte : image) {
    if (!text.empty()) text += ' ';
    text += (byte & 1U) != 0 ? '1' : '0';
  }
  return text;
}

std::string AsciiUnits(const Bytes& image, std::size_t unitBytes) {
  constexpr std::uint32_t kLastCharacter = 255;
  std::string ansi;
  for (std::size_t i = 0; i < image.size() / unitBytes; ++i) {
    const std::uint32_t code = UnitAt(image, i, unitBytes);
    if (code == 0 || code > kLastCharacter) break;
    ansi += static_cast<char>(code);
  }
  return AnsiToUtf8(ansi);
}

std::string FloatUnits(const Bytes& image) {
  constexpr std::size_t kWidth = 12;
  std::string text;
  text.reserve(image.size() / kFloatUnit * kWidestUnit);
  for (std::size_t i = 0; i < image.size() / kFloatUnit; ++i) {
    const std::string number = FloatText(mdlFloatHandling::FloatFromController(UnitAt(image, i, kFloatUnit)));
    if (number.size() < kWidth) text.append(kWidth - number.size(), ' ');
    text += number;
    text += ' ';
  }
  return text;
}

std::string RawTexts(std::span<const std::string> rawValues) {
  std::string text;
  text.reserve(rawValues.size() * kWidestUnit);
  for (const std::string& value : rawValues) {
    if (&value != rawValues.data()) text += ' ';
    text += value;
  }
  return text;
}

bool IsSize(SizeCode size) {
  return size == SizeCode::Bit1 || size == SizeCode::Bit8 || size == SizeCode::Bit16 || size == SizeCode::Bit32;
}

}  // namespace

std::string DisplayRow(OperandTypeCode type, std::span<const std::string> rawValues, SizeCode size, FormatCode format) {
  const TypeFacts* facts = TypeFactsOf(type);
  if (facts == nullptr) return {};
  if (facts->imageWidth == 0) return RawTexts(rawValues);
  if (!IsSize(size)) return {};
  const Cut cut = CutOf(*facts, size, format);
  const Bytes image = ByteImage(*facts, rawValues, cut.unitBytes);
  switch (format) {
    case FormatCode::Ascii:
      return AsciiUnits(image, cut.unitBytes);
    case FormatCode::Float:
      return FloatUnits(image);
    case FormatCode::Binary:
      return IsBitImage(*facts) ? BitUnits(image) : NumberUnits(image, cut, format);
    case FormatCode::Decimal:
    case FormatCode::Unsigned:
    case FormatCode::Hex:
      return NumberUnits(image, cut, format);
    case FormatCode::None:
      break;
  }
  return {};
}

}  // namespace kv::mdlDataTypesView
