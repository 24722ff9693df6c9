#pragma once

#include <string>

#include "desktop/Prompts.h"

namespace kv::cli {

// What an engine says in a message box becomes the text of the command's failure; what it asks goes to
// `asked`, or counts as declined.
class NotedPrompts final : public Prompts {
 public:
  explicit NotedPrompts(Prompts* asked = nullptr) : mAsked(asked) {}

  // The last text that was said, with line feeds between its lines; empty when nothing was.
  [[nodiscard]] const std::string& Said() const { return mSaid; }

  PromptAnswer Show(const MessageBox& box) override {
    if (mAsked != nullptr && box.buttons != PromptButtons::Ok) return mAsked->Show(box);
    mSaid = box.text;
    std::erase(mSaid, '\r');
    return LeastCommitting(box.buttons);
  }
  [[nodiscard]] std::optional<std::string> Ask(const InputBox&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }

 private:
  Prompts* mAsked;
  std::string mSaid;
};

}  // namespace kv::cli
