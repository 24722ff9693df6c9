#include "desktop/ScriptedPrompts.h"

namespace kv {

ScriptedPrompts::~ScriptedPrompts() {
  if (!mAnswers.empty()) mFail(std::to_string(mAnswers.size()) + " told answers were never asked for");
}

template <typename Kind>
std::optional<Kind> ScriptedPrompts::Take(const std::string& prompt) {
  const bool fits = !mAnswers.empty() && std::holds_alternative<Kind>(mAnswers.front());
  if (!fits) {
    mFail("unexpected prompt, " +
          std::string(mAnswers.empty() ? "no answer is left" : "the next answer is of another kind") + ": " + prompt);
    return std::nullopt;
  }
  const Kind answer = std::get<Kind>(std::move(mAnswers.front()));
  mAnswers.pop_front();
  return answer;
}

PromptAnswer ScriptedPrompts::Show(const MessageBox& box) {
  mBoxes.push_back(box);
  const std::string name = "message box '" + box.title + "': " + box.text;
  const auto answer = Take<PromptAnswer>(name);
  if (!answer) return LeastCommitting(box.buttons);
  if (HasButton(box.buttons, *answer)) return *answer;
  mFail("the told answer is no button of the " + name);
  return LeastCommitting(box.buttons);
}

std::optional<std::string> ScriptedPrompts::Ask(const InputBox& box) {
  mInputs.push_back(box);
  const auto answer = Take<Text>("input box '" + box.title + "': " + box.text);
  return answer ? answer->value : std::nullopt;
}

std::optional<std::string> ScriptedPrompts::OpenFile(const FileDialog& dialog) {
  mOpenDialogs.push_back(dialog);
  const auto answer = Take<Path>("open dialog '" + dialog.title + "': " + dialog.filter);
  return answer ? answer->value : std::nullopt;
}

std::optional<std::string> ScriptedPrompts::SaveFile(const FileDialog& dialog) {
  mSaveDialogs.push_back(dialog);
  const auto answer = Take<Path>("save dialog '" + dialog.title + "': " + dialog.filter);
  return answer ? answer->value : std::nullopt;
}

}  // namespace kv
