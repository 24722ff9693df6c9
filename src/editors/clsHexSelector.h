#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kv {

// The window in which a character is picked.
class HexSelectorWindow {
 public:
  virtual ~HexSelectorWindow() = default;

  // Shows the window modally with this character chosen (2 hexadecimal digits), and returns the code that is chosen
  // when the user confirms; nothing when the window is left in another way.
  [[nodiscard]] virtual std::optional<std::string> Edit(const std::string& hexCode) = 0;
};

// Lets the user choose one character of Windows-1252 by its code. Which ones are of use is the caller's rule.
class clsHexSelector {
 public:
  explicit clsHexSelector(HexSelectorWindow& window) : mWindow(window) {}

  // The code that the user confirmed; the comma is offered first.
  [[nodiscard]] std::optional<std::uint8_t> SelectChar();

 private:
  HexSelectorWindow& mWindow;
};

}  // namespace kv
