#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "desktop/console/ConsolePrompts.h"

namespace kv::test {

// A terminal at which somebody sits who types these lines; without lines at all nobody is there to ask.
class TypedInput final : public ConsoleInput {
 public:
  std::optional<std::deque<std::string>> lines;
  bool lastWasSecret = false;
  std::function<void()> onRead = [] {};  // what happens while the program waits for a line

  [[nodiscard]] bool IsInteractive() const override { return lines.has_value(); }
  [[nodiscard]] std::optional<std::string> ReadLine(bool secret) override {
    lastWasSecret = secret;
    onRead();
    if (!lines || lines->empty()) return std::nullopt;
    std::string line = lines->front();
    lines->pop_front();
    return line;
  }
};

}  // namespace kv::test
