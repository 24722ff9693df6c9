#pragma once

#include <string>
#include <utility>

#include "desktop/Prompts.h"
#include "link/PasswordSource.h"

namespace kv {

// Asks the user, with one input box. A password that is known beforehand is tried first.
class PromptedPassword final : public PasswordSource {
 public:
  // `prompts` outlive this. `known` is Windows-1252.
  PromptedPassword(Prompts& prompts, std::string cure, std::optional<std::string> known = {})
      : mPrompts(prompts), mCure(std::move(cure)), mKnown(std::move(known)) {}

  [[nodiscard]] std::optional<std::string> Password(const PasswordWanted& wanted) override;
  [[nodiscard]] std::string Cure() const override { return mCure; }

 private:
  Prompts& mPrompts;
  std::string mCure;
  std::optional<std::string> mKnown;
};

}  // namespace kv
