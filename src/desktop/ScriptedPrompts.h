#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "desktop/Prompts.h"

namespace kv {

// The prompts of tests: a queue of answers, told beforehand in the order in which the user is asked, and a record of
// every box as it was asked. A prompt with no answer of its kind at the head of the queue, and an answer that was
// never asked for, are reported to `fail`; the prompt is then closed, and the queue stays.
class ScriptedPrompts : public Prompts {
 public:
  using Fail = std::function<void(const std::string& what)>;

  explicit ScriptedPrompts(Fail fail) : mFail(std::move(fail)) {}
  ~ScriptedPrompts() override;
  ScriptedPrompts(const ScriptedPrompts&) = delete;
  ScriptedPrompts& operator=(const ScriptedPrompts&) = delete;

  // Tells the next answers. For the texts and paths, nothing means that the user cancels.
  void Press(PromptAnswer answer) { mAnswers.emplace_back(answer); }
  void Enter(std::optional<std::string> text) { mAnswers.emplace_back(Text{std::move(text)}); }
  void Choose(std::optional<std::string> path) { mAnswers.emplace_back(Path{std::move(path)}); }

  // What was asked so far.
  [[nodiscard]] const std::vector<MessageBox>& Boxes() const { return mBoxes; }
  [[nodiscard]] const std::vector<InputBox>& Inputs() const { return mInputs; }
  [[nodiscard]] const std::vector<FileDialog>& OpenDialogs() const { return mOpenDialogs; }
  [[nodiscard]] const std::vector<FileDialog>& SaveDialogs() const { return mSaveDialogs; }

  PromptAnswer Show(const MessageBox& box) override;
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override;
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog& dialog) override;
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog& dialog) override;

 private:
  struct Text {
    std::optional<std::string> value;
  };
  struct Path {
    std::optional<std::string> value;
  };
  using Answer = std::variant<PromptAnswer, Text, Path>;

  // Takes the head of the queue if it is of this kind, and names the prompt as unexpected if not.
  template <typename Kind>
  std::optional<Kind> Take(const std::string& prompt);

  Fail mFail;
  std::deque<Answer> mAnswers;
  std::vector<MessageBox> mBoxes;
  std::vector<InputBox> mInputs;
  std::vector<FileDialog> mOpenDialogs;
  std::vector<FileDialog> mSaveDialogs;
};

}  // namespace kv
