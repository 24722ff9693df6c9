#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "dataview/operands/Region.h"

// Everything about the operands that depends on their type: names, sizes and formats offered, limits by model, what
// may be written. Pure functions over the type codes and the model's text.
namespace kv::mdlDataTypesView {

// The name that grids and region files show, for example "TIMER PRESET"; empty for a code that is no type.
[[nodiscard]] std::string_view TypeName(OperandTypeCode type);

// The type with this name; in either case, and a minus may stand for the blank ("TIMER-PRESET").
[[nodiscard]] std::optional<OperandTypeCode> TypeFromName(std::string_view name);

// "1 BIT", "8 BIT", "16 BIT", "32 BIT"; empty for any other code.
[[nodiscard]] std::string_view SizeName(SizeCode size);

// "ASCII", "BINARY", "UNSIGNED", "HEX", "DECIMAL", "FLOAT"; empty for any other code.
[[nodiscard]] std::string_view FormatName(FormatCode format);

// MB, SB, INPUT, OUTPUT and XB. The bits of timers and counters are none: they share a request with numbers.
[[nodiscard]] bool IsBitType(OperandTypeCode type);

// The presets and current values of timers: their raw value texts are times (TimerText.h).
[[nodiscard]] bool IsTimeType(OperandTypeCode type);

// Whether the program of the view may change operands of the type.
[[nodiscard]] bool IsWritableType(OperandTypeCode type);

// The size that shows each operand of the type as one number.
[[nodiscard]] SizeCode OwnSize(OperandTypeCode type);

// What the user may choose for a row, in the order of the lists; none for a code that is none.
[[nodiscard]] std::span<const SizeCode> SizesOffered(OperandTypeCode type);
[[nodiscard]] std::span<const FormatCode> FormatsOffered(SizeCode size);

// The same in the grid's item-list syntax, in which a cell stores the code and shows the text: "#1;8 BIT|#2;16
// BIT|#4;32 BIT".
[[nodiscard]] std::string SizeComboList(OperandTypeCode type);
[[nodiscard]] std::string FormatComboList(SizeCode size);

// The colour models with the larger operand memory.
[[nodiscard]] bool IsLargeMemoryModel(std::string_view model);

// How many operands of the type the model has, from address 0 on; 0 when it has none. LegacyOsOperandCount is the same
// for a controller with an older O/S.
[[nodiscard]] std::int32_t OperandCount(OperandTypeCode type, std::string_view model);
[[nodiscard]] std::int32_t LegacyOsOperandCount(OperandTypeCode type, std::string_view model);

// Whether a region ends past the operands that the model has. One address too many passes (`to` equal to the count):
// users' region files rely on it, and the controller refuses what it does not have.
[[nodiscard]] bool IsPastOperandCount(const Region& region, std::string_view model);

// The most operands that one request carries, and so a region holds: 240 hexadecimal characters' worth, so 120, 60
// or 30. 0 for no type. The protocol carries at least as many (maxPerRequest in KvCmDrv1/wire/OperandTypes.h).
[[nodiscard]] std::int32_t MaxOperandsPerRequest(OperandTypeCode type);

// Backgrounds of the rows of types that may be written and of the others, blue in the high byte, red in the low one.
inline constexpr std::uint32_t kWritableColour = 15854029;
inline constexpr std::uint32_t kReadOnlyColour = 10804728;

}  // namespace kv::mdlDataTypesView
