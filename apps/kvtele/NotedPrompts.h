#pragma once

#include <string>

#include "desktop/Prompts.h"

namespace kv::cli {

// Prompts of commands that ask nothing: what an engine says in a message box becomes the text of the command's failure.
class NotedPrompts final : public Prompts {
 public:
  // The last text that was said, with line feeds between its lines; empty when nothing was.
  [[nodiscard]] const std::string& Said() const { return mSaid; }

  PromptAnswer Show(const MessageBox& box) override {
    mSaid = box.text;
    std::erase(mSaid, '\r');
    return LeastCommitting(box.buttons);
  }
  [[nodiscard]] std::optional<std::string> Ask(const InputBox&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }

 private:
  std::string mSaid;
};

}  // namespace kv::cli
