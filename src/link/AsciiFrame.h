#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

// Longest text of an ASCII frame, between unit id and checksum.
inline constexpr std::size_t kMaxFrameText = 1100;

// The sum of the character codes, modulo 256: the checksum of a frame whose unit id digits and text are `unitAndText`,
// and, taken over a reply's text alone, the one that stands behind that text when it is handed on.
[[nodiscard]] std::uint8_t AsciiChecksum(std::string_view unitAndText);

// The frame that carries `text` (1 to kMaxFrameText characters) to a unit: "/", unit id as two upper-case digits, text,
// checksum as two upper-case digits, CR. BuildFrame(0, "ID") is "/00IDED" and CR.
[[nodiscard]] std::string BuildFrame(std::uint8_t unit, std::string_view text);

}  // namespace kv
