#pragma once

#include <QEventLoop>
#include <QMainWindow>
#include <QTimer>
#include <filesystem>
#include <optional>

#include "KvTele2/HostView.h"
#include "KvTele2/ui/CommandBar.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/QtPacer.h"

class QStackedWidget;

namespace kv {

class ControllerPage;
class LogView;
class StatusFields;
class TelepanelHost;

// The main window: shows the host's state and hands on what the user does. The middle is a stack of pages with the
// controller page in it, so that the controller's screen has its place there.
class frmMain final : public QMainWindow, public HostView {
 public:
  // `pacer` outlives the window; `windowsFile` keeps its place.
  frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile);
  ~frmMain() override;

  // To be called once, before anything is shown. The host outlives the window.
  void SetHost(TelepanelHost& host) { mHost = &host; }

  void Show(const HostState& state, const Journal& journal) override;
  void Run() override;
  void Quit() override;
  void BeginWait(Wait wait, const std::string& what) override;
  void EndWait() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void BuildMiddle();
  void BuildTimers();
  void ShowLogMenu(const QPoint& at);  // on the screen
  void Command(std::string_view id, const std::string& argument);
  void LetInputThrough();
  void ShowPointer(bool busy);
  void Tick();

  QtPacer& mPacer;
  TelepanelHost* mHost = nullptr;
  CommandBar mCommands;
  QStackedWidget* mPages = nullptr;
  ControllerPage* mPage = nullptr;
  LogView* mLog = nullptr;
  StatusFields* mStatus = nullptr;
  QTimer mHeartbeat;  // of the host, while a controller is held
  QTimer mInputDelay;
  QTimer mSilence;
  std::optional<BusyState> mBusy;
  std::optional<InputGate> mGateBefore;  // while input is let through
  bool mIsPointerBusy = false;
  QEventLoop mLoop;
};

}  // namespace kv
