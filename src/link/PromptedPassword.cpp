#include "link/PromptedPassword.h"

#include "base/AnsiText.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

// The form in which a controller takes a password; nothing where it has none. What no controller can have is not sent
// to one.
std::optional<Secret> ForController(std::string_view utf8) {
  std::string ansi = Utf8ToAnsi(utf8);
  std::string back = AnsiToUtf8(ansi);
  const bool isPossible = !ansi.empty() && ansi.size() <= kLongestPassword && back == utf8;
  Wipe(back);
  Secret password = Secret::TakenFrom(ansi);
  return isPossible ? std::optional(std::move(password)) : std::nullopt;
}

}  // namespace

std::optional<Secret> PromptedPassword::Password(const PasswordWanted& wanted) {
  const bool knownWasWrong = wanted.wasWrong && mGivenTo == wanted.controller;
  if (knownWasWrong) mRefusedBy.insert(wanted.controller);
  mGivenTo.clear();
  if (auto known = Known(); known && !mRefusedBy.contains(wanted.controller)) {
    mGivenTo = wanted.controller;
    return known;
  }
  return Asked(wanted, knownWasWrong);
}

void PromptedPassword::Forget() {
  mRefusedBy.clear();
  mGivenTo.clear();
}

std::optional<Secret> PromptedPassword::Known() const {
  const Secret* known = mKnown.current();
  return known ? ForController(known->View()) : std::nullopt;
}

std::optional<Secret> PromptedPassword::Asked(const PasswordWanted& wanted, bool knownWasWrong) const {
  InputBox box;
  box.text = knownWasWrong     ? mKnown.name + " is wrong here. "
             : wanted.wasWrong ? "This password is wrong. "
                               : "The controller does this only with its password. ";
  box.text += "Upper and lower case differ.\r\n\r\n" + wanted.controller + "\r\n" + wanted.link +
              "\r\n\r\nPassword, up to " + std::to_string(kLongestPassword) + " characters:";
  box.secret = true;
  auto entered = mPrompts.Ask(box);
  if (!entered) return std::nullopt;
  std::string ansi = Utf8ToAnsi(*entered);
  Wipe(*entered);
  return Secret::TakenFrom(ansi);
}

}  // namespace kv
