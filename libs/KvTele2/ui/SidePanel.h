#pragma once

#include <QWidget>

#include "KvTele2/Sign.h"

class QFormLayout;
class QGroupBox;
class QLabel;

namespace kv {

class ElidedLabel;
class SignMark;

// Beside the pages of the main window, always as wide: who the controller is and how it is, and how good the link is.
class SidePanel final : public QWidget {
 public:
  explicit SidePanel(QWidget* parent);

  void Show(const HostState& state);

 private:
  [[nodiscard]] QGroupBox* BuildController();
  [[nodiscard]] QGroupBox* BuildLink();
  [[nodiscard]] QGroupBox* BuildFile();
  SignMark* AddSign(QFormLayout& rows, const char* name, const char* label);
  QLabel* AddRow(QFormLayout& rows, const char* name, const char* label);

  QGroupBox* mController = nullptr;
  QGroupBox* mLink = nullptr;
  SignMark* mMachineMark = nullptr;
  SignMark* mLinkMark = nullptr;
  ElidedLabel* mPages = nullptr;
};

}  // namespace kv
