#pragma once

#include <QDialog>
#include <filesystem>
#include <functional>
#include <memory>

#include "host/ToolWindow.h"

namespace kv {

// A tool's dialog as the dispatch sees it: made in front of the window that is active, remembered in its place, and
// destroyed when it has closed.
class DialogWindow final : public ToolWindow {
 public:
  using Make = std::function<std::unique_ptr<QDialog>(QWidget* parent)>;

  DialogWindow(const Make& make, const std::filesystem::path& windowsFile);

  void ShowModal() override { mDialog->exec(); }

 private:
  std::unique_ptr<QDialog> mDialog;
};

}  // namespace kv
