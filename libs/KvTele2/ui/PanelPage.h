#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <string_view>
#include <vector>

#include "KvTele2/ui/PanelScale.h"

class QAction;
class QFrame;
class QScrollArea;

namespace kv {

class ElidedLabel;
class PanelBanner;
class PanelFind;
class PanelKeys;
class PanelView;
class TelepanelHost;
struct HostState;

// The page of a controller that is on line and has a panel: its screen, its keys and what there is to be told of them.
// Here is the beat to which the host asks for the screen and sends what is pressed: each step is made on a turn of the
// event loop, with what is pressed at that very moment, so that a window that hangs lets go.
class PanelPage final : public QWidget {
 public:
  using OnCommand = std::function<void(std::string_view id)>;

  // `commands` stand in its banner.
  PanelPage(OnCommand onCommand, const std::vector<QAction*>& commands, QWidget* parent);

  // Before anything is shown. The host outlives the page.
  void SetHost(TelepanelHost& host) { mHost = &host; }

  // Shows everything anew, and goes on asking when there is something to ask for.
  void Show(const HostState& state);
  void SetScale(PanelScale scale);
  void SetFullScreen(bool isFull);
  void OpenFind();
  [[nodiscard]] PanelView& View() { return *mView; }

 protected:
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void Build(const std::vector<QAction*>& commands);
  [[nodiscard]] QWidget* BuildMissing();
  void Step();
  void StepNow();
  void Follow();
  void Schedule();
  void ShowFrame(bool isOperated);
  void TakeColours();

  OnCommand mOnCommand;
  TelepanelHost* mHost = nullptr;
  PanelBanner* mBanner = nullptr;
  QFrame* mFrame = nullptr;
  QScrollArea* mScroll = nullptr;
  PanelView* mView = nullptr;
  PanelKeys* mKeys = nullptr;
  PanelFind* mFind = nullptr;
  QWidget* mMissingBox = nullptr;
  ElidedLabel* mMissing = nullptr;
  QTimer mStep;
  QTimer mBlink;
  bool mIsBlinkSeen = true;
};

}  // namespace kv
