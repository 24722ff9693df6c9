#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KvCmDrv1/LinkSettings.h"

namespace kv {

// "8N1", "7E1" and so on: data bits (7, 8), parity (N, E, O), stop bits (1, 2).
[[nodiscard]] std::string FramingText(const SerialFraming& framing);
[[nodiscard]] std::optional<SerialFraming> ParseFraming(std::string_view text);  // letters of either case

// How many bits one byte takes on the wire: start bit, data, parity, stop.
[[nodiscard]] int BitsOnWire(const SerialFraming& framing);

// The number in "COM3", "/dev/ttyS3" or a name of these; 0 in other names.
[[nodiscard]] int SerialPortNumber(std::string_view port);

}  // namespace kv
