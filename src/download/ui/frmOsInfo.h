#pragma once

#include <QDialog>

#include "download/DownloadWindow.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace kv {

// Lets the user pick the O/S file and the system fonts file for an Aurex controller.
class frmOsInfo final : public QDialog {
 public:
  // `controller`: whom the file is chosen for.
  frmOsInfo(const AurexOsLists& lists, const QString& controller, QWidget* parent);

  // Both empty when the window was cancelled; one of them when its list has no file.
  [[nodiscard]] AurexOsChoice ShowGUI();

 private:
  void ShowHint();

  AurexOsLists mLists;
  QComboBox* mOs = nullptr;
  QComboBox* mFonts = nullptr;
  QLabel* mHint = nullptr;
  QPushButton* mClose = nullptr;
};

}  // namespace kv
