#pragma once

#include <QDialog>
#include <memory>

#include "apps/KvTeleExe/ToolWindowTable.h"
#include "host/ToolWindow.h"

namespace kv {

// A tool's dialog as the dispatch sees it: remembered in its place, and destroyed when it has closed.
class DialogWindow final : public ToolWindow {
 public:
  DialogWindow(std::unique_ptr<QDialog> dialog, const WindowServices& services);

  void ShowModal() override { mDialog->exec(); }

 private:
  std::unique_ptr<QDialog> mDialog;
};

}  // namespace kv
