#pragma once

#include <string>
#include <string_view>

#include "dataview/operands/OperandTypes.h"

// What a user may enter as the value of one operand. Stricter than the check before a write (ValueRange.h) where no
// controller takes what that lets through: timers must be times, counters hold 16 bits.
namespace kv::mdlDataTypesView {

// "whole numbers from -32768 to 32767"; empty for a type that cannot be written. Without a model the times of both
// families are meant.
[[nodiscard]] std::string_view LegalEntries(OperandTypeCode type, std::string_view model);

// False for a type that cannot be written.
[[nodiscard]] bool IsLegalEntry(OperandTypeCode type, std::string_view model, std::string_view text);

// How an entry that is legal stands in the grid: a time in full, so that its user sees which of its numbers were taken
// for hours; all others as they were typed.
[[nodiscard]] std::string EntryText(OperandTypeCode type, std::string_view model, std::string_view text);

// Whether a grid that was exported or copied may have had the text there: beside the entries, what a controller tells
// and takes from nobody.
[[nodiscard]] bool IsLegalTransfer(OperandTypeCode type, std::string_view model, std::string_view text);

// Why the text of a file is not taken as a time: a plain number there is what office programs make of a time, in days,
// and would be read as hours. Empty for other texts and types, for 0, and where the model's times are milliseconds.
[[nodiscard]] std::string DaysFault(OperandTypeCode type, std::string_view model, std::string_view text);

}  // namespace kv::mdlDataTypesView
