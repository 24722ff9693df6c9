#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/panel/ScreenModel.h"
#include "KvTele2/panel/ScreenResources.h"

namespace kv::panel {

// A text on the screen, or a thing on it that has a name, and where that is: for selection, search and screen readers.
struct ScreenText {
  std::string text;                   // UTF-8, without blanks at its end
  PixelRect place;                    // dots of the picture; empty for a key
  std::optional<TouchItem> touch{};   // what can be pressed there
  std::optional<std::uint8_t> key{};  // the id of the key that does it
};

// All of them, as one reads: from the upper to the lower, from left to right, keys last. Of texts those that are not
// empty.
[[nodiscard]] std::vector<ScreenText> TextsOf(const ScreenModel& model, const ScreenResources& resources);

// A text or a name that the controller tells, for people: UTF-8, what is no character as blanks, none at its end.
[[nodiscard]] std::string ReadableText(std::string_view ansi);

// The screen as lines of UTF-8, each with a line feed: of a text display its rows as they are; of a colour display its
// texts, those beside each other in one line.
[[nodiscard]] std::string PlainText(const ScreenModel& model, const ScreenResources& resources);

// "button".
[[nodiscard]] std::string_view RoleName(TouchRole role);

// "button \"Start\", on", for people: role, name and state of what can be pressed.
[[nodiscard]] std::string TouchText(const TouchItem& touch);

}  // namespace kv::panel
