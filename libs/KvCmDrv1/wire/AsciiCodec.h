#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "link/AsciiFrame.h"

namespace kv {

inline constexpr char kFrameStart = '/';
inline constexpr char kFrameEnd = '\r';

// Longest frame: "/", unit id (2), text, checksum (2), CR.
inline constexpr std::size_t kMaxFrameLength = 1 + 2 + kMaxFrameText + 2 + 1;

// Whether the character may stand in a frame, behind "/" and before CR.
[[nodiscard]] inline bool IsFrameCharacter(char c) {
  return c >= 0x20 && c <= 0x7E;
}
// Whether all of them may.
[[nodiscard]] bool IsPlain(std::string_view text);

// What a good frame carries; `text` points into the bytes that were read.
struct AsciiFrame {
  std::uint8_t unit = 0;
  std::string_view text;
};

// Why a text cannot be sent.
enum class TextFault {
  None,
  Empty,
  TooLong,       // more than kMaxFrameText characters
  BadCharacter,  // one outside 0x20 to 0x7E
  TailIsFrame,   // a receiver would take what stands behind a "/" in it for a frame of its own
};

// Puts the frame of `text` into `frame`, in place of what was there. On a fault `frame` is empty.
[[nodiscard]] TextFault EncodeFrame(std::uint8_t unit, std::string_view text, std::string& frame);

// The text in a frame that EncodeFrame made.
[[nodiscard]] std::string_view TextOf(std::string_view frame);

// Finds the frame in `line`, which begins with "/" and ends before a CR: of all stretches from a "/" to the end, the
// last that is a good frame. Nothing when none is.
[[nodiscard]] std::optional<AsciiFrame> FindFrame(std::string_view line);

}  // namespace kv
