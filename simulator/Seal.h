#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/Refusal.h"

namespace sim {

// ASCII frames and their checks: docs/controller-protocol.md, section 2.

struct AsciiFrame {
  std::uint8_t unit = 0;
  std::string_view text;
};

constexpr char kFrameStart = '/';
constexpr char kFrameEnd = '\r';
constexpr std::size_t kLongestFrame = 1106;  // from "/" to CR, both included

// The bytes of a frame around `text`.
[[nodiscard]] std::string EncodeFrame(std::uint8_t unit, std::string_view text);

// Reads a stretch from "/" to CR, both included, with nothing but 0x20 to 0x7E between them; nothing when it is not a
// good frame (length, digits, checksum). The text stays in `bytes`.
[[nodiscard]] std::optional<AsciiFrame> DecodeFrame(std::string_view bytes);

// The bytes of a frame around a reply and its seal, for the text of the request as it was received.
[[nodiscard]] std::string EncodeReply(std::uint8_t unit, std::string_view request, std::string_view reply,
                                      std::uint16_t counter);

// False for a request of our own commands (RO, WO, RM, IN, AC, SY) whose last 8 digits are not its check.
[[nodiscard]] bool IsRequestSound(const AsciiFrame& request);

// The text of a refusal, without the seal.
[[nodiscard]] std::string RefusalText(std::string_view request, Refusal refusal);

}  // namespace sim
