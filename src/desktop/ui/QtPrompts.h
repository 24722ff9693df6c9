#pragma once

#include "desktop/Prompts.h"

namespace kv {

// Prompts as boxes of the desktop, in front of the active window. For tests the boxes are named "MessageBox",
// "InputBox" and "FileDialog", the buttons of the first two "cmdOk", "cmdCancel", "cmdYes" and "cmdNo", and the field
// of the input box "txtInput".
class QtPrompts final : public Prompts {
 public:
  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override;
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override;
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override;

 private:
  std::string mLastFolder;  // in which a file was chosen last
};

}  // namespace kv
