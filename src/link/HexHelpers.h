#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Bytes.h"

namespace kv {

// The byte that two hexadecimal digits of either case stand for; nothing for any other text.
[[nodiscard]] std::optional<std::uint8_t> HexPairToByte(std::string_view pair);

// One byte for each two characters. An odd last character is ignored ("0A1" is the one byte 10), an empty text gives no
// bytes. Nothing when a pair is not hexadecimal.
[[nodiscard]] std::optional<Bytes> HexStringToBytes(std::string_view text);

}  // namespace kv
