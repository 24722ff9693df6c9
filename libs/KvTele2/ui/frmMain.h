#pragma once

#include <QEventLoop>
#include <QMainWindow>
#include <QTimer>
#include <filesystem>
#include <optional>
#include <vector>

#include "KvTele2/HostView.h"
#include "KvTele2/ui/CommandBar.h"
#include "KvTele2/ui/PanelScale.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/QtPacer.h"
#include "desktop/ui/Theme.h"

class QStackedWidget;

namespace kv {

class LogView;
class MachineHeading;
class PanelPage;
class SidePanel;
class StartPage;
class StatusFields;
class TelepanelHost;
class ValuesPage;

// The main window: shows the host's state and hands on what the user does. Which machine it is stands above, what is
// known of it at the side; the middle is a stack of pages (MiddlePage), and below is the log.
class frmMain final : public QMainWindow, public HostView {
 public:
  // `pacer` outlives the window; `windowsFile` keeps its place.
  frmMain(QtPacer& pacer, const std::filesystem::path& windowsFile);
  ~frmMain() override;

  // To be called once, before anything is shown. The host outlives the window.
  void SetHost(TelepanelHost& host);

  void Show(const HostState& state, const Journal& journal) override;
  void Run() override;
  void Quit() override;
  void BeginWait(Wait wait, const std::string& what) override;
  void EndWait() override;
  [[nodiscard]] std::expected<void, std::string> SavePicture(const std::string& path) override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void BuildMiddle();
  [[nodiscard]] QWidget* BuildPages(QWidget* parent);
  void BuildTimers();
  void FitScreen();
  void ShowLogMenu(const QPoint& at);  // on the screen
  void Command(std::string_view id, const std::string& argument);
  void LetInputThrough();
  void NoteSilence();
  void ShowPanelCommand(std::string_view id, const QString& argument);
  void ShowScale(PanelScale scale);
  void ToggleFullScreen();
  void ShowPointer(bool busy);
  void Tick();

  QtPacer& mPacer;
  std::filesystem::path mWindowsFile;
  TelepanelHost* mHost = nullptr;
  ThemeChoice mTheme;
  CommandBar mCommands;
  MachineHeading* mHeading = nullptr;
  QStackedWidget* mPages = nullptr;  // in the order of MiddlePage
  StartPage* mStart = nullptr;
  ValuesPage* mValues = nullptr;
  PanelPage* mPanel = nullptr;
  SidePanel* mSide = nullptr;
  QWidget* mSideColumn = nullptr;
  std::vector<QWidget*> mAround;  // what full screen leaves out and is seen now
  LogView* mLog = nullptr;
  StatusFields* mStatus = nullptr;
  QTimer mHeartbeat;  // of the host, while a controller is held
  QTimer mInputDelay;
  QTimer mSilence;
  const QWidget* mModalBefore = nullptr;  // the wait; only ever compared
  std::optional<BusyState> mBusy;
  std::optional<InputGate> mGateBefore;  // while input is let through
  bool mIsPointerBusy = false;
  QEventLoop mLoop;
};

}  // namespace kv
