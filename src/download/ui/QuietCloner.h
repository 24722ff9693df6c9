#pragma once

#include <functional>
#include <string>
#include <utility>

#include "desktop/Prompts.h"

namespace kv {

// The cloner's prompts while it works for a download: its questions are asked, and what it only tells is handed to
// `onTold` instead of a box. Nobody's OK is waited for while the controller is stopped, or half loaded.
class QuietCloner final : public Prompts {
 public:
  using OnTold = std::function<void(const std::string& text)>;

  QuietCloner(Prompts& prompts, OnTold onTold) : mPrompts(prompts), mOnTold(std::move(onTold)) {}

  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override { return mPrompts.Ask(box); }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override {
    return mPrompts.OpenFile(dialog);
  }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override {
    return mPrompts.SaveFile(dialog);
  }

 private:
  Prompts& mPrompts;
  OnTold mOnTold;
};

}  // namespace kv
