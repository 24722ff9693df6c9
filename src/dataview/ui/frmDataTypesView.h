#pragma once

#include <QDialog>
#include <QTimer>
#include <optional>
#include <string_view>

#include "dataview/DataTypesView.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/QtPacer.h"

namespace kv {

namespace mdlDataTypesView {
class OperandGrid;
class RegionGrid;
class ToolBands;
class ViewBanner;
class ViewStatusBar;
}  // namespace mdlDataTypesView

// The operand data view: the operand grid above, the regions table below, a band of tools over each. Every rule is the
// DataTypesView's; the window shows what it holds and hands on what the user does.
class frmDataTypesView final : public QDialog, private mdlDataTypesView::GridListener {
 public:
  // Loads the grids of the session. `pacer` is the one of the parts, which all outlive the window.
  frmDataTypesView(const mdlDataTypesView::DataTypesViewParts& parts, QtPacer& pacer, QWidget* parent);
  ~frmDataTypesView() override;

  // Ends the on-line mode, keeps the grids in the session and closes. A running read or write is asked to stop instead.
  // Grids that cannot be kept are lost only when the user agrees.
  void done(int result) override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void GridsChanged(const mdlDataTypesView::GridChanges& changes) override;
  void StatusChanged() override;

  void BuildGrids();
  void BuildTools();
  void BuildTimers();
  void Arrange();

  void OnTool(std::string_view id);
  // What is typed into either grid; false when it is refused.
  bool TakeTyped();
  void WatchAgain(bool isByItself);
  void TakeOtherController();
  // After a loss, where the user wants it.
  void TryToWatchAgain();
  void OnRegionsSelected();
  bool OnWindowTool(std::string_view id);
  [[nodiscard]] QString WhyNot(std::string_view id) const;
  void ShowTools();
  void ShowStatus();
  void ShowBusy();
  void WatchOnline();
  void ShowStall();
  // Of the regions' values; empty when there are none, and on line.
  [[nodiscard]] QString OldestAge() const;

  void HideRows();
  void ShowRows();
  void GoToPlace();
  void TellUnwritten();

  mdlDataTypesView::DataTypesViewParts mParts;
  QtPacer& mPacer;
  bool mHadUnwritten = false;  // edited values, when it was opened
  mdlDataTypesView::DataTypesView mView;
  mdlDataTypesView::OperandGrid* mOperands = nullptr;
  mdlDataTypesView::RegionGrid* mRegions = nullptr;
  mdlDataTypesView::ToolBands* mTools = nullptr;
  mdlDataTypesView::ViewBanner* mBanner = nullptr;
  mdlDataTypesView::ViewStatusBar* mStatus = nullptr;
  bool mWasLost = false;  // when the status was shown last
  std::optional<BusyState> mBusy;
  QString mRunning;    // the command that runs, for the busy state
  QTimer mToolsTimer;  // several changes of the selection show the tools once
  QTimer mFadeTimer;   // while on line
  QTimer mAgeTimer;
  QTimer mStallTimer;  // runs out when an exchange of the on-line mode takes long
};

}  // namespace kv
