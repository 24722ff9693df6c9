#pragma once

#include <optional>
#include <string>

namespace kv {

enum class PromptIcon { None, Information, Exclamation, Question, Critical };
enum class PromptButtons { Ok, OkCancel, YesNo };
enum class PromptAnswer { Ok, Cancel, Yes, No };

// One message box. Texts are UTF-8 with CR LF between lines.
struct MessageBox {
  std::string text;
  std::string title = "Telepanel";
  PromptIcon icon = PromptIcon::None;
  PromptButtons buttons = PromptButtons::Ok;
};

// One input box.
struct InputBox {
  std::string text;
  std::string title = "Telepanel";
  std::string initial;
  bool secret = false;  // typed characters are not shown
};

// One file dialog. `filter` reads "Description|*.ext".
struct FileDialog {
  std::string title;
  std::string filter;
  std::string folder;   // UTF-8 path in which the dialog opens; empty: where it was last
  std::string initial;  // file name that stands in the dialog at first
};

// Questions to the user. Qt shows them, the console prints them and answers from its flags, the test script answers
// and records them.
class Prompts {
 public:
  virtual ~Prompts() = default;

  // Shows the box and returns the pressed button. Closing the box counts as its least committing button: Ok, Cancel or No.
  virtual PromptAnswer Show(const MessageBox& box) = 0;

  // The text entered with OK; nothing when the user cancelled.
  [[nodiscard]] virtual std::optional<std::string> Ask(const InputBox& box) = 0;

  // The chosen path (UTF-8); nothing when the user cancelled. A save dialog has asked about overwriting by itself.
  [[nodiscard]] virtual std::optional<std::string> OpenFile(const FileDialog& dialog) = 0;
  [[nodiscard]] virtual std::optional<std::string> SaveFile(const FileDialog& dialog) = 0;
};

}  // namespace kv
