#pragma once

#include <QDialog>
#include <cstddef>
#include <optional>

#include "download/DownloadWindow.h"

class QComboBox;

namespace kv {

// Lets the user pick one O/S file for a compact controller.
class frmBrioQ50OsInfo final : public QDialog {
 public:
  // `controller`: whom the file is chosen for.
  frmBrioQ50OsInfo(const FileList& list, const QString& controller, QWidget* parent);

  // The place in the list; nothing when the user cancelled.
  [[nodiscard]] std::optional<std::size_t> ShowGUI();

  bool IsCanceled = true;

 private:
  QComboBox* mOs = nullptr;
};

}  // namespace kv
