#include "desktop/console/ConsolePrompts.h"

#include <filesystem>
#include <ostream>
#include <system_error>

#include "base/PathText.h"

namespace kv {

namespace {

// As often as a person would try. A box that comes again and again has found the password wrong, and would never end.
constexpr int kMaxPasswordUses = 3;

// Boxes have CR LF between their lines; on the terminal the further lines stand under the first.
std::string Indented(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\n')
      result += "\n  ";
    else if (c != '\r')
      result += c;
  }
  return result;
}

const char* ButtonHint(PromptButtons buttons) {
  return buttons == PromptButtons::YesNo ? " [y/N] " : " [ok/CANCEL] ";
}

const char* ButtonName(PromptAnswer answer) {
  switch (answer) {
    case PromptAnswer::Ok:
      return "ok";
    case PromptAnswer::Cancel:
      return "cancel";
    case PromptAnswer::Yes:
      return "yes";
    case PromptAnswer::No:
      return "no";
  }
  return "";
}

bool IsConsent(const std::string& typed) {
  const bool yes = typed == "y" || typed == "Y" || typed == "yes" || typed == "Yes" || typed == "YES";
  return yes || typed == "ok" || typed == "Ok" || typed == "OK";
}

}  // namespace

PromptAnswer ConsolePrompts::Show(const MessageBox& box) {
  Print(box.title, box.text);
  if (box.buttons == PromptButtons::Ok) {
    mOut << '\n' << std::flush;
    return PromptAnswer::Ok;
  }
  mOut << ButtonHint(box.buttons) << std::flush;
  const PromptAnswer least = LeastCommitting(box.buttons);
  if (mAnswers.yes) {
    mOut << ButtonName(Consent(box.buttons)) << " (" << mAnswers.yesFlag << ")\n" << std::flush;
    return Consent(box.buttons);
  }
  if (mAnswers.no) {
    mOut << ButtonName(least) << " (" << mAnswers.noFlag << ")\n" << std::flush;
    return least;
  }
  const auto typed =
      Type(false, std::string(ButtonName(least)) + " (nobody to ask; " + mAnswers.yesFlag + " consents)");
  return typed && IsConsent(*typed) ? Consent(box.buttons) : least;
}

std::optional<std::string> ConsolePrompts::Ask(const InputBox& box) {
  Print(box.title, box.text + (box.hint.empty() ? "" : "\n" + box.hint + "\n"));
  const bool offered = !box.secret && !box.initial.empty();
  mOut << (offered ? " [" + box.initial + "] " : " ") << std::flush;
  if (auto password = KnownPassword(box)) {
    mOut << "(" << mAnswers.passwordFlag << ")\n" << std::flush;
    return password;
  }
  auto typed =
      Type(box.secret, box.secret ? "cancelled (nobody to ask; --password-file answers)" : "cancelled (nobody to ask)");
  return typed && typed->empty() && offered ? box.initial : typed;
}

std::optional<std::string> ConsolePrompts::OpenFile(const FileDialog& dialog) {
  return ChoosePath(dialog, mAnswers.openFiles);
}

std::optional<std::string> ConsolePrompts::SaveFile(const FileDialog& dialog) {
  const auto path = ChoosePath(dialog, mAnswers.saveFiles);
  std::error_code error;
  if (!path || !std::filesystem::exists(PathFromUtf8(*path), error)) return path;
  const MessageBox overwrite{.text = *path + " already exists. Do you want to replace it?",
                             .title = dialog.title,
                             .icon = PromptIcon::Question,
                             .buttons = PromptButtons::YesNo};
  return Show(overwrite) == PromptAnswer::Yes ? path : std::nullopt;
}

std::optional<std::string> ConsolePrompts::KnownPassword(const InputBox& box) {
  const bool known = box.secret && !mAnswers.password.IsEmpty() && ++mPasswordUses[box.text] <= kMaxPasswordUses;
  return known ? std::optional(std::string(mAnswers.password.View())) : std::nullopt;
}

// The typed line; where nobody can type, nothing, and `hint` is printed in its place.
std::optional<std::string> ConsolePrompts::Type(bool secret, const std::string& hint) {
  if (mInput.IsInteractive()) return mInput.ReadLine(secret);
  mOut << hint << '\n' << std::flush;
  return std::nullopt;
}

std::optional<std::string> ConsolePrompts::ChoosePath(const FileDialog& dialog, std::deque<std::string>& known) {
  Print(dialog.title, dialog.filter + " ");
  if (!known.empty()) {
    std::string path = std::move(known.front());
    known.pop_front();
    mOut << path << '\n' << std::flush;
    return path;
  }
  auto typed = Type(false, "cancelled (no file was given)");
  return typed && !typed->empty() ? typed : std::nullopt;
}

void ConsolePrompts::Print(const std::string& title, const std::string& text) {
  mOut << title << ": " << Indented(text) << std::flush;
}

}  // namespace kv
