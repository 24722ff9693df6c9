#include "dataview/operands/OperandCatalogue.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"
#include "dataview/operands/TypeTable.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int32_t kRequestHexChars = 240;
constexpr std::int32_t kBitHexChars = 2;
constexpr std::int32_t kWordHexChars = 4;

using enum SizeCode;
using enum FormatCode;

constexpr std::array kBitSizes = {Bit1};
constexpr std::array kWordSizes = {Bit8, Bit16, Bit32};

// BINARY for bits and bytes alone, UNSIGNED from 16 bits on, FLOAT for 32 bits alone: as users of the view know it.
constexpr std::array kBit1Formats = {Binary};
constexpr std::array kBit8Formats = {Ascii, Binary, Hex, Decimal};
constexpr std::array kBit16Formats = {Ascii, Hex, Decimal, Unsigned};
constexpr std::array kBit32Formats = {Ascii, Hex, Decimal, Unsigned, Float};

bool SameName(std::string_view name, std::string_view typed) {
  return std::ranges::equal(name, UpperCased(typed), [](char n, char t) { return n == t || (n == ' ' && t == '-'); });
}

std::int32_t CountFor(const GroupCounts& counts, std::string_view model) {
  if (IsCompactModel(model)) return counts.compact;
  return IsLargeMemoryModel(model) ? counts.largeMemory : counts.colour;
}

template <typename Code, typename NameOf>
std::string ComboList(std::span<const Code> codes, NameOf nameOf) {
  std::string list;
  for (const Code code : codes) {
    if (!list.empty()) list += '|';
    list += '#';
    list += std::to_string(static_cast<std::int32_t>(code));
    list += ';';
    list += nameOf(code);
  }
  return list;
}

}  // namespace

std::string_view TypeName(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr ? facts->name : std::string_view();
}

std::optional<OperandTypeCode> TypeFromName(std::string_view name) {
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    if (SameName(TypeName(type), name)) return type;
  }
  return std::nullopt;
}

std::string_view SizeName(SizeCode size) {
  switch (size) {
    case Bit1:
      return "1 BIT";
    case Bit8:
      return "8 BIT";
    case Bit16:
      return "16 BIT";
    case Bit32:
      return "32 BIT";
  }
  return {};
}

std::string_view FormatName(FormatCode format) {
  switch (format) {
    case None:
      return {};
    case Ascii:
      return "ASCII";
    case Binary:
      return "BINARY";
    case Unsigned:
      return "UNSIGNED";
    case Hex:
      return "HEX";
    case Decimal:
      return "DECIMAL";
    case Float:
      return "FLOAT";
  }
  return {};
}

bool IsBitType(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr && facts->hexChars == kBitHexChars;
}

bool IsWritableType(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr && !std::holds_alternative<std::monostate>(facts->write);
}

bool IsTimeType(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr && facts->raw == RawKind::Time;
}

SizeCode OwnSize(OperandTypeCode type) {
  if (IsBitType(type)) return Bit1;
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr && facts->hexChars == kWordHexChars ? Bit16 : Bit32;
}

std::span<const SizeCode> SizesOffered(OperandTypeCode type) {
  if (TypeFactsOf(type) == nullptr) return {};
  if (IsBitType(type)) return kBitSizes;
  return kWordSizes;
}

std::span<const FormatCode> FormatsOffered(SizeCode size) {
  switch (size) {
    case Bit1:
      return kBit1Formats;
    case Bit8:
      return kBit8Formats;
    case Bit16:
      return kBit16Formats;
    case Bit32:
      return kBit32Formats;
  }
  return {};
}

std::string SizeComboList(OperandTypeCode type) {
  return ComboList(SizesOffered(type), SizeName);
}

std::string FormatComboList(SizeCode size) {
  return ComboList(FormatsOffered(size), FormatName);
}

bool IsLargeMemoryModel(std::string_view model) {
  return IsExtendedColourModel(model);
}

std::int32_t OperandCount(OperandTypeCode type, std::string_view model) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr ? CountFor(facts->counts, model) : 0;
}

std::int32_t LegacyOsOperandCount(OperandTypeCode type, std::string_view model) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr ? CountFor(facts->legacyCounts, model) : 0;
}

bool IsPastOperandCount(const Region& region, std::string_view model) {
  return region.to > OperandCount(region.type, model);
}

std::int32_t MaxOperandsPerRequest(OperandTypeCode type) {
  const TypeFacts* facts = TypeFactsOf(type);
  return facts != nullptr ? kRequestHexChars / facts->hexChars : 0;
}

}  // namespace kv::mdlDataTypesView
