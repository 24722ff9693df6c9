#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "desktop/Prompts.h"
#include "link/PasswordSource.h"

namespace kv {

// A password that is there before anybody is asked.
struct KnownPassword {
  std::function<const Secret*()> current = [] { return nullptr; };  // UTF-8; null or empty: there is none
  std::string name = {};                                            // "The password of --password", for the texts
};

// Asks the user, with one input box. A password that is known is tried first; a controller that has refused it is not
// given it again.
class PromptedPassword final : public PasswordSource {
 public:
  // `prompts` outlive this.
  PromptedPassword(Prompts& prompts, std::string cure, KnownPassword known = {})
      : mPrompts(prompts), mCure(std::move(cure)), mKnown(std::move(known)) {}

  [[nodiscard]] std::optional<Secret> Password(const PasswordWanted& wanted) override;
  [[nodiscard]] std::string Cure() const override { return mCure; }
  void Forget() override;

 private:
  [[nodiscard]] std::optional<Secret> Known() const;
  [[nodiscard]] std::optional<Secret> Asked(const PasswordWanted& wanted, bool knownWasWrong) const;

  Prompts& mPrompts;
  std::string mCure;
  KnownPassword mKnown;
  std::set<std::string> mRefusedBy;  // the controllers that did not take the known one
  std::string mGivenTo;              // the one that was given the known one last
};

}  // namespace kv
