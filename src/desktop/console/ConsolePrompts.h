#pragma once

#include <deque>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "desktop/Prompts.h"
#include "desktop/console/ConsoleInput.h"
#include "secret/Secret.h"

namespace kv {

// What the user has answered beforehand, by flags and arguments.
struct ConsoleAnswers {
  bool yes = false;               // consents to every message box, overwriting among them
  bool no = false;                // answers every question with its least committing button
  std::string yesFlag = "--yes";  // how the user says so beforehand, for the texts
  std::string noFlag = {};
  Secret password = {};  // answers the boxes that ask for one; empty: none
  std::string passwordFlag = "--password";
  std::deque<std::string> openFiles = {};  // paths for the open dialogs, in the order in which they come
  std::deque<std::string> saveFiles = {};  // the same for the save dialogs
};

// Prompts on the terminal: every box is printed, answered from the flags, else typed by the user; where nobody can be
// asked, the least committing answer is taken, and the print says so.
class ConsolePrompts final : public Prompts {
 public:
  // `out` is meant to be the standard error, so that it does not mix with data; both outlive the prompts.
  ConsolePrompts(ConsoleAnswers answers, std::ostream& out, ConsoleInput& input)
      : mAnswers(std::move(answers)), mOut(out), mInput(input) {}

  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override;
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override;
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override;

 private:
  [[nodiscard]] std::optional<std::string> KnownPassword(const InputBox& box);
  [[nodiscard]] std::optional<std::string> Type(bool secret, const std::string& hint);
  [[nodiscard]] std::optional<std::string> ChoosePath(const FileDialog& dialog, std::deque<std::string>& known);
  void Print(const std::string& title, const std::string& text);

  ConsoleAnswers mAnswers;
  std::ostream& mOut;
  ConsoleInput& mInput;
  std::map<std::string, int> mPasswordUses;  // by the text of the box
};

}  // namespace kv
