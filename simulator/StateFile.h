#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "base/LineError.h"
#include "simulator/Machine.h"

namespace sim {

// What a controller keeps while it is switched off. A text of lines, each ended by LF, in this order:
//
//   KVSIM-STATE 1                      format and its version
//   model K220-22-R1                   name in the model table
//   serial 0123ABCD                    8 digits
//   os 4.60                            O/S version
//   build 19                           O/S build, decimal
//   os-loaded 1                        0 from the erase of the O/S flash until a new image is there
//   state R                            R, S, B or L
//   project 48616C6C                   project name, 2 digits a byte
//   cells MB 0010 00000001 ...         first address(4) and 1 to 16 values(8 digits) of operands; others are 0
//   memory OP 00000000 0102...         offset(8) in the segment and 1 to 64 bytes; others are 255
//   check 89ABCDEF                     CRC-32 of everything before this line
//
// Not kept: the password (an option), times, what was on its way in a download, and the O/S flash of a compact boot
// loader.

// A larger file is not read.
inline constexpr std::size_t kLargestStateFile = std::size_t{8} << 20;

[[nodiscard]] std::string WriteState(const Machine& machine);

// The text must be of the machine's model. On failure the machine is spoilt.
[[nodiscard]] std::expected<void, kv::LineError> ReadState(std::string_view text, Machine& machine);

}  // namespace sim
