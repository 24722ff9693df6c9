#pragma once

#include <functional>
#include <utility>

#include "desktop/Pacer.h"
#include "desktop/Prompts.h"

namespace kv {

// Prompts that tell how long each of them was open, so that the pace of an operation is not judged by its user's.
class TimedPrompts final : public Prompts {
  template <typename Prompt>
  auto Timed(const Prompt& prompt) {
    const Instant start = mPacer.Now();
    auto answer = prompt();
    mOnAnswer(mPacer.Now() - start);
    return answer;
  }

 public:
  using OnAnswer = std::function<void(Duration open)>;

  TimedPrompts(Prompts& prompts, const Pacer& pacer, OnAnswer onAnswer)
      : mPrompts(prompts), mPacer(pacer), mOnAnswer(std::move(onAnswer)) {}

  PromptAnswer Show(const MessageBox& box) override {
    return Timed([&] { return mPrompts.Show(box); });
  }
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override {
    return Timed([&] { return mPrompts.Ask(box); });
  }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override {
    return Timed([&] { return mPrompts.OpenFile(dialog); });
  }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override {
    return Timed([&] { return mPrompts.SaveFile(dialog); });
  }

 private:
  Prompts& mPrompts;
  const Pacer& mPacer;
  OnAnswer mOnAnswer;
};

}  // namespace kv
