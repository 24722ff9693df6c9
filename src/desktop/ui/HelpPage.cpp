#include "desktop/ui/HelpPage.h"

#include "base/PathText.h"

namespace kv {

void OpenHelpPage(Shell& shell, Prompts& prompts, const std::filesystem::path& page, const std::string& title) {
  if (const auto opened = shell.Open("", Utf8FromPath(page), ""); !opened) {
    prompts.Show({.text = opened.error(), .title = title, .icon = PromptIcon::Exclamation});
  }
}

}  // namespace kv
