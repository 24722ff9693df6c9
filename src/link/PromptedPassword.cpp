#include "link/PromptedPassword.h"

#include "link/LinkLimits.h"

#include "base/AnsiText.h"

namespace kv {

std::optional<std::string> PromptedPassword::Password(const PasswordWanted& wanted) {
  if (mKnown && !wanted.wasWrong) return mKnown;
  InputBox box;
  box.text = wanted.wasWrong ? "This password is wrong. " : "The controller does this only with its password. ";
  box.text += "Upper and lower case differ.\r\n\r\n" + wanted.controller + "\r\n" + wanted.link +
              "\r\n\r\nPassword, up to " + std::to_string(kLongestPassword) + " characters:";
  box.secret = true;
  const auto entered = mPrompts.Ask(box);
  if (!entered) return std::nullopt;
  return Utf8ToAnsi(*entered);
}

}  // namespace kv
