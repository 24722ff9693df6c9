#pragma once

#include <optional>
#include <string>

namespace kv {

enum class PromptIcon { None, Information, Exclamation, Question, Critical };
enum class PromptButtons { Ok, OkCancel, YesNo };
enum class PromptAnswer { Ok, Cancel, Yes, No };

[[nodiscard]] constexpr bool HasButton(PromptButtons buttons, PromptAnswer answer) {
  switch (buttons) {
    case PromptButtons::Ok:
      return answer == PromptAnswer::Ok;
    case PromptButtons::OkCancel:
      return answer == PromptAnswer::Ok || answer == PromptAnswer::Cancel;
    case PromptButtons::YesNo:
      return answer == PromptAnswer::Yes || answer == PromptAnswer::No;
  }
  return false;
}

// The button that commits to the most: Ok or Yes.
[[nodiscard]] constexpr PromptAnswer Consent(PromptButtons buttons) {
  return buttons == PromptButtons::YesNo ? PromptAnswer::Yes : PromptAnswer::Ok;
}

// The button that commits to the least: Ok when there is no other, Cancel or No. Closing a box counts as this one, but
// see MessageBox::canLose.
[[nodiscard]] constexpr PromptAnswer LeastCommitting(PromptButtons buttons) {
  switch (buttons) {
    case PromptButtons::OkCancel:
      return PromptAnswer::Cancel;
    case PromptButtons::YesNo:
      return PromptAnswer::No;
    case PromptButtons::Ok:
      break;
  }
  return PromptAnswer::Ok;
}

// One message box. Texts are UTF-8 with CR LF between lines.
struct MessageBox {
  std::string text = {};
  std::string title = "Telepanel";
  PromptIcon icon = PromptIcon::None;
  PromptButtons buttons = PromptButtons::Ok;
  // What is lost by consent cannot be brought back: Enter presses the other button. Where there is OK alone, closing
  // the box otherwise answers Cancel.
  bool canLose = false;

  bool operator==(const MessageBox&) const = default;
};

// One input box.
struct InputBox {
  std::string text = {};
  std::string title = "Telepanel";
  std::string initial = {};
  bool secret = false;    // typed characters are not shown
  std::string hint = {};  // below the text: whom it concerns, and what helps to answer

  bool operator==(const InputBox&) const = default;
};

// One file dialog. `filter` reads "Description|*.ext".
struct FileDialog {
  std::string title = {};
  std::string filter = {};
  std::string purpose = {};   // one short word, "Clones": the dialog opens in the folder that was used last for it
  std::string folder = {};    // UTF-8 path in which it opens instead; one that is not there counts as none
  std::string initial = {};   // file name that stands in the dialog at first
  bool asksToReplace = true;  // of a save dialog; false: whoever opens it knows more of the file, and asks by itself

  bool operator==(const FileDialog&) const = default;
};

// Questions to the user. Qt shows them, the console prints them and answers from its flags, the test script answers
// and records them.
class Prompts {
 public:
  virtual ~Prompts() = default;

  // Shows the box and returns the pressed button. Closing the box counts as LeastCommitting.
  virtual PromptAnswer Show(const MessageBox& box) = 0;

  // The text entered with OK; nothing when the user cancelled. Whoever asks for a secret wipes it when it is used.
  [[nodiscard]] virtual std::optional<std::string> Ask(const InputBox& box) = 0;

  // The chosen path (UTF-8); nothing when the user cancelled. A save dialog has asked about overwriting
  // by itself, unless it was told not to.
  [[nodiscard]] virtual std::optional<std::string> OpenFile(const FileDialog& dialog) = 0;
  [[nodiscard]] virtual std::optional<std::string> SaveFile(const FileDialog& dialog) = 0;
};

}  // namespace kv
