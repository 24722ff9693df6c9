#pragma once

#include <QWidget>

#include "KvTele2/HostState.h"

class QFormLayout;
class QGroupBox;
class QLabel;

namespace kv {

class ElidedLabel;
class HelpLink;

// The page in the middle of the main window: whom the program is connected to, and how good the link is.
class ControllerPage final : public QWidget {
 public:
  explicit ControllerPage(QWidget* parent);

  void Show(const HostState& state);

 private:
  void BuildHeading();
  void BuildFacts();
  [[nodiscard]] QLabel* AddRow(QFormLayout& rows, const char* name, const char* label);
  void ShowConnection(const HostState& state);
  void ShowFacts(const HostState& state);

  QLabel* mPicture = nullptr;
  QLabel* mConnection = nullptr;
  QLabel* mTrouble = nullptr;
  HelpLink* mHelp = nullptr;
  QLabel* mPages = nullptr;
  QGroupBox* mController = nullptr;
  QGroupBox* mLink = nullptr;
};

}  // namespace kv
