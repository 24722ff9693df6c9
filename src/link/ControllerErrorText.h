#pragma once

#include <string>
#include <string_view>

namespace kv {

// Refusal codes on which programs act; the protocol page names all of them.
inline constexpr int kPastEndCode = 0x04;
inline constexpr int kNeedsPasswordCode = 0x07;
inline constexpr int kWrongPasswordCode = 0x08;
inline constexpr int kBusyCode = 0x0A;
inline constexpr int kNotOnThisModelCode = 0x0E;

// What the code behind ERROR means, and what helps. Both read on behind "the controller refused: " and "What to do: ".
struct ControllerErrorMeaning {
  std::string_view meaning;
  std::string_view cure;
};

// The refusal codes of docs/controller-protocol.md, 1 to 15; any other code gives a meaning that says that it is
// unknown.
[[nodiscard]] ControllerErrorMeaning ControllerErrorText(int code);

// The same in answer to an input at the panel: codes that speak of operands, memory or files mean nothing there.
[[nodiscard]] ControllerErrorMeaning PanelErrorText(int code);

// "the controller refused: it is busy (code 0A)".
[[nodiscard]] std::string RefusedText(const ControllerErrorMeaning& meaning, int code);

}  // namespace kv
