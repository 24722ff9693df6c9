#pragma once

#include <QDialog>
#include <memory>
#include <string_view>

#include "apps/KvTeleExe/ToolWindowTable.h"
#include "host/ToolWindow.h"

namespace kv {

// A tool's dialog as the dispatch sees it: remembered in its place, with its topic of the help at F1, and destroyed
// when it has closed.
class DialogWindow final : public ToolWindow {
 public:
  // `topic` is a file in the folder of the help; empty: F1 is the dialog's own.
  DialogWindow(std::unique_ptr<QDialog> dialog, std::string_view topic, const WindowServices& services);

  void ShowModal() override { mDialog->exec(); }

 private:
  void OpenHelp() const;

  std::unique_ptr<QDialog> mDialog;
  std::string_view mTopic;
  WindowServices mServices;
};

}  // namespace kv
