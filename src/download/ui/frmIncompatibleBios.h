#pragma once

#include <QDialog>

#include "download/DownloadWindow.h"

class QCheckBox;
class QPushButton;

namespace kv {

// The warning that another O/S may erase the project in the controller. It is continued only by whoever has ticked the
// box; closing the window is the same as Abort.
class frmIncompatibleBios final : public QDialog {
 public:
  explicit frmIncompatibleBios(QWidget* parent);

  [[nodiscard]] BiosAnswer ShowMessage();

 private:
  QCheckBox* mDelete = nullptr;
  QPushButton* mAbort = nullptr;
  QPushButton* mContinue = nullptr;
  BiosAnswer mAnswer = BiosAnswer::Abort;
};

}  // namespace kv
