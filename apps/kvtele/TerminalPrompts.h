#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>

#include "apps/kvtele/Environment.h"
#include "apps/kvtele/TerminalProgress.h"
#include "desktop/console/ConsolePrompts.h"

namespace kv::cli {

// The boxes of an engine on the terminal, beside a line of progress, which makes room before each.
class TerminalPrompts : public Prompts {
 public:
  TerminalPrompts(Environment& environment, ConsoleAnswers answers)
      : mLine(environment),
        mPacer(environment.pacer),
        mPrompts(std::move(answers), environment.err, environment.input) {}

  PromptAnswer Show(const MessageBox& box) override {
    mLine.Wipe();
    return mPrompts.Show(box);
  }
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override {
    mLine.Wipe();
    return mPrompts.Ask(box);
  }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }

 protected:
  // Whether the line may be written anew: ten times a second at most. The caller writes it then.
  [[nodiscard]] bool TakeLineTurn() {
    if (mPacer.Now() < mNextLine) return false;
    mNextLine = mPacer.Now() + std::chrono::milliseconds(100);
    return true;
  }

  TerminalLine mLine;

 private:
  Pacer& mPacer;
  ConsolePrompts mPrompts;
  Instant mNextLine{};
};

}  // namespace kv::cli
