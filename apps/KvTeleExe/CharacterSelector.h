#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "editors/clsHexSelector.h"

namespace kv {

// The character selector in front of the window that asks for it; its own window lives only while it is open.
class CharacterSelector final : public HexSelectorWindow {
 public:
  explicit CharacterSelector(std::filesystem::path windowsFile) : mWindowsFile(std::move(windowsFile)) {}

  [[nodiscard]] std::optional<std::string> Edit(const std::string& hexCode) override;

 private:
  std::filesystem::path mWindowsFile;
};

}  // namespace kv
