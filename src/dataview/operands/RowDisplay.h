#pragma once

#include <span>
#include <string>

#include "dataview/operands/OperandTypes.h"

namespace kv::mdlDataTypesView {

// The text (UTF-8) in which a row shows its region's raw value texts.
//
// The operands' bytes, least significant first and in address order, are cut into units of the row's size, filled up
// with zero bytes at the end. A unit is written as:
//   DECIMAL   unsigned in 3 characters (8 bits), signed in 6 (16 bits) or 11 (32 bits), right-aligned
//   UNSIGNED  right-aligned in 10 characters
//   HEX       upper-case digits, two a byte
//   BINARY    each byte as two groups of four bits; an operand of a bit type as one digit
//   ASCII     the character with this code; the text ends at the first unit that is 0 or above 255
//   FLOAT     two 16-bit words, the high half of the float first, right-aligned in 12 characters and a blank behind
// All but ASCII and FLOAT are separated by one blank and turned round within an operand, so that it reads most
// significant part first. 16-bit types at 32 BIT change places in pairs of units, as users of the view know it; a last
// unit without a partner stays where it is.
//
// MF, DBI, timers and counters show their raw value texts, separated by one blank, whatever size and format are. A text
// that is no whole number shows as 0. Empty for a code that is none.
[[nodiscard]] std::string DisplayRow(OperandTypeCode type, std::span<const std::string> rawValues, SizeCode size,
                                     FormatCode format);

}  // namespace kv::mdlDataTypesView
