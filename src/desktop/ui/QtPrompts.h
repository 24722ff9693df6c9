#pragma once

#include <filesystem>
#include <utility>

#include "desktop/Prompts.h"
#include "desktop/ui/LastFolders.h"

namespace kv {

// Prompts as boxes of the desktop, in front of the active window. For tests the boxes are named "MessageBox",
// "InputBox" and "FileDialog", the buttons of the first two "cmdOk", "cmdCancel", "cmdYes" and "cmdNo", and the field
// of the input box "txtInput".
//
// File dialogs open where a file was chosen last for the same purpose, in this run of the program or an earlier one.
class QtPrompts final : public Prompts {
 public:
  // `settings` keeps the folders from one run to the next; without it they are kept until the program ends.
  explicit QtPrompts(std::filesystem::path settings = {}) : mFolders(std::move(settings)) {}

  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override;
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override;
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override;

 private:
  LastFolders mFolders;
};

}  // namespace kv
