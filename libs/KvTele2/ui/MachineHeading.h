#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

#include "KvTele2/HostState.h"

class QLabel;
class QPushButton;

namespace kv {

class ElidedLabel;
class HelpLink;
class ScrollPage;
class SignMark;

// Above the pages of the main window: which machine, how it is, its address; and below that what is wrong with the
// connection, and what can be done about it here.
class MachineHeading final : public QWidget {
 public:
  using OnCommand = std::function<void(std::string_view id)>;

  MachineHeading(OnCommand onCommand, QWidget* parent);

  void Show(const HostState& state);
  // Machine, state and address; on a low screen they have no room, and stand in the window's title.
  void ShowName(bool isShown);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* BuildTrouble();
  void FitTrouble();
  [[nodiscard]] QPushButton* MakeButton(const char* name, const QIcon& icon, std::string_view id, const char* tip);

  OnCommand mOnCommand;
  SignMark* mMark = nullptr;
  ElidedLabel* mHeading = nullptr;
  ElidedLabel* mAddress = nullptr;
  ScrollPage* mTroubleBox = nullptr;  // where there is no room for all of it
  QLabel* mTrouble = nullptr;
  HelpLink* mHelp = nullptr;
  QLabel* mRetry = nullptr;
  QPushButton* mTryNow = nullptr;
  QPushButton* mTakeModel = nullptr;
};

}  // namespace kv
