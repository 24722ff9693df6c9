#include "dataview/ui/frmDataTypesView.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QVBoxLayout>
#include <utility>

#include "base/Texts.h"
#include "dataview/operands/PlaceText.h"
#include "dataview/ui/OperandGrid.h"
#include "dataview/ui/RegionGrid.h"
#include "dataview/ui/ToolBands.h"
#include "dataview/ui/ViewBanner.h"
#include "dataview/ui/ViewStatusBar.h"
#include "desktop/ui/HelpRequest.h"
#include "desktop/ui/Icons.h"

namespace kv {

using namespace mdlDataTypesView;

namespace {

constexpr QSize kFirstSize(1180, 760);
constexpr QSize kSmallest(480, 320);
constexpr std::chrono::milliseconds kFadeInterval{100};
constexpr std::chrono::seconds kAgeInterval{1};
// A single answer that takes longer is shown as a wait, so that it can be cancelled.
constexpr std::chrono::milliseconds kStallLimit{1000};
constexpr int kColumnStep = 2;  // characters

QWidget* Pane(QWidget& band, QWidget& grid, QSplitter* parent) {
  auto* pane = new QWidget(parent);
  auto* lines = new QVBoxLayout(pane);
  lines->setContentsMargins({});
  lines->addWidget(&band);
  if (auto* heading = band.findChild<QLabel*>()) heading->setBuddy(&grid);
  lines->addWidget(&grid, 1);
  return pane;
}

}  // namespace

frmDataTypesView::frmDataTypesView(const DataTypesViewParts& parts, QtPacer& pacer, QWidget* parent)
    : QDialog(parent), mParts(parts), mPacer(pacer), mView(parts, *this) {
  setObjectName("frmDataTypesView");
  setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                 Qt::WindowCloseButtonHint);
  setWindowIcon(IconOf("datatypes"));
  mView.Open();
  mHadUnwritten = mView.Operands().EditedCount() > 0;
  setWindowTitle(QString::fromStdString(mView.Caption()));
  BuildGrids();
  BuildTools();
  BuildTimers();
  Arrange();
  mOperands->ShowSettings();
  mRegions->ShowSettings();
  StatusChanged();
  mOperands->setFocus();
}

frmDataTypesView::~frmDataTypesView() = default;

void frmDataTypesView::BuildGrids() {
  mOperands = new OperandGrid(mView, this);
  mRegions = new RegionGrid(mView, this);
  mOperands->onRefusedEdit = [this](const QString& why) { mView.Refuse(why.toStdString()); };
  mOperands->onClear = [this] { OnTool(command::kClear); };
  mRegions->onRemove = [this] { OnTool(command::kRemoveRegion); };
  connect(mOperands->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    mView.Select(mOperands->SelectedRectangle());
    mToolsTimer.start();
  });
  connect(mRegions->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { OnRegionsSelected(); });
  connect(mOperands, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { mTools->Popup().popup(mOperands->viewport()->mapToGlobal(at)); });
  connect(mRegions, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { mTools->RegionPopup().popup(mRegions->viewport()->mapToGlobal(at)); });
  mOperands->ShowFrames({});
}

void frmDataTypesView::BuildTools() {
  mTools = new ToolBands(*this, [this](std::string_view id) { OnTool(id); });
  connect(&mTools->GoToLine(), &QLineEdit::returnPressed, this, [this] { GoToPlace(); });
  mStatus = new ViewStatusBar(this);
  mBanner = new ViewBanner(mView, this);
  mBanner->onGoOn = [this] { mView.IsOtherController() ? TakeOtherController() : WatchAgain(false); };
}

void frmDataTypesView::BuildTimers() {
  mToolsTimer.setSingleShot(true);
  connect(&mToolsTimer, &QTimer::timeout, this, [this] { ShowTools(); });
  mFadeTimer.setInterval(kFadeInterval);
  connect(&mFadeTimer, &QTimer::timeout, this, [this] {
    mOperands->Fade();
    mRegions->ShowAges();
  });
  mAgeTimer.setInterval(kAgeInterval);
  connect(&mAgeTimer, &QTimer::timeout, this, [this] {
    ShowStatus();
    mRegions->ShowAges();
    TryToWatchAgain();
  });
  mStallTimer.setSingleShot(true);
  mStallTimer.setInterval(kStallLimit);
  connect(&mStallTimer, &QTimer::timeout, this, [this] { ShowStall(); });
}

void frmDataTypesView::Arrange() {
  auto* panes = new QSplitter(Qt::Vertical, this);
  panes->setObjectName("splDataTypes");
  panes->setChildrenCollapsible(false);
  panes->addWidget(Pane(mTools->OperandBand(), *mOperands, panes));
  panes->addWidget(Pane(mTools->RegionBand(), *mRegions, panes));
  panes->setStretchFactor(0, 3);
  panes->setStretchFactor(1, 2);
  auto* page = new QVBoxLayout(this);
  page->addWidget(&mTools->MenuBand());
  page->addWidget(mBanner);
  page->addWidget(panes, 1);
  page->addWidget(mStatus);
  page->setContentsMargins(6, 2, 6, 0);
  // A banner that comes takes its room from the grids: a window that grew for it would leave a small screen, and stay
  // large when the banner goes.
  page->setSizeConstraint(QLayout::SetNoConstraint);
  setMinimumSize(kSmallest);
  resize(kFirstSize);
}

void frmDataTypesView::GridsChanged(const GridChanges& changes) {
  if (!mRegions) return;  // the view opens
  mOperands->Follow(changes);
  mRegions->Follow(changes);
  // Rows that come or go above the selected ones move them without a signal.
  if (changes.regionRowsReplaced) {
    mView.SelectRegions(mRegions->SelectedRegions());
    mOperands->ShowFrames(mRegions->SelectedRegions());
  }
}

void frmDataTypesView::OnRegionsSelected() {
  const std::vector<std::size_t> selected = mRegions->SelectedRegions();
  mView.SelectRegions(selected);
  mOperands->ShowFrames(selected);
  if (!selected.empty()) mOperands->ShowRegion(mView.Regions().Rows()[selected.front()].region);
  mToolsTimer.start();
}

void frmDataTypesView::StatusChanged() {
  if (!mStatus) return;
  ShowBusy();
  WatchOnline();
  ShowStatus();
  ShowTools();
}

void frmDataTypesView::ShowStatus() {
  mStatus->Show(mView.Status(), OldestAge());
  mTools->ShowController(QString::fromStdString(mView.ControllerText()));
  mBanner->Follow();
  const bool isLost = mView.Status().loss.has_value();
  if (isLost == std::exchange(mWasLost, isLost)) return;
  mOperands->Fade();  // old values are pale
  mRegions->ShowAges();
}

void frmDataTypesView::ShowTools() {
  mTools->Show([this](std::string_view id) { return WhyNot(id); }, mView.Status().mode == ViewMode::Online,
               QString::fromStdString(mView.UndoText()), QString::fromStdString(mView.RedoText()));
}

void frmDataTypesView::ShowBusy() {
  const ViewStatus& status = mView.Status();
  if (status.mode != ViewMode::Busy) {
    mBusy.reset();
    return;
  }
  const QString amount = status.total == 0 ? "" : QString("\n%1 of %2 regions").arg(status.done).arg(status.total);
  if (mBusy) {
    mBusy->SetText(mRunning + amount);
  } else {
    mBusy.emplace(mPacer, *this, mRunning + amount);
  }
}

void frmDataTypesView::WatchOnline() {
  if (mView.Status().mode == ViewMode::Online) {
    mStallTimer.start();
    mAgeTimer.stop();
    if (!mFadeTimer.isActive()) mFadeTimer.start();
  } else {
    mStallTimer.stop();
    if (!mAgeTimer.isActive()) mAgeTimer.start();
    if (mFadeTimer.isActive()) mOperands->Fade();
    mFadeTimer.stop();
    mRegions->ShowAges();
  }
}

void frmDataTypesView::ShowStall() {
  // An open menu or question holds the mode up, not the controller.
  const QWidget* modal = QApplication::activeModalWidget();
  if (QApplication::activePopupWidget() || (modal && modal != this)) {
    mStallTimer.start();
  } else {
    mBusy.emplace(mPacer, *this, "Waiting for an answer of the controller");
  }
}

QString frmDataTypesView::OldestAge() const {
  if (mView.Status().mode == ViewMode::Online) return {};
  const auto rows = mView.Regions().Rows();
  if (mRegions->HasKept()) return "Values from before";
  std::optional<std::size_t> oldest;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (rows[row].readAt && (!oldest || *rows[row].readAt < *rows[*oldest].readAt)) oldest = row;
  }
  return oldest ? "Read " + QString::fromStdString(mView.AgeText(*oldest)) + " ago" : QString();
}

QString frmDataTypesView::WhyNot(std::string_view id) const {
  if (id == command::kHideRows && mOperands->SelectedRows().empty()) return "No row is selected.";
  if (id == command::kShowRows && mView.Settings().hidden == HiddenRows()) return "No row is hidden.";
  return QString::fromStdString(mView.WhyNot(id));
}

void frmDataTypesView::OnTool(std::string_view id) {
  if (!WhyNot(id).isEmpty() || OnWindowTool(id)) return;
  const bool isEndOfOnline = id == command::kOnLine && mView.Status().mode == ViewMode::Online;
  if (!isEndOfOnline && !TakeTyped()) return;
  mRunning = mTools->Action(id).text().remove('&').remove("...");
  mView.Run(id);
  ShowTools();
}

void frmDataTypesView::WatchAgain(bool isByItself) {
  if (!TakeTyped()) return;
  mRunning = isByItself ? "Looking for the controller" : "Going on line again";
  mView.WatchAgain(isByItself);
  ShowTools();
}

void frmDataTypesView::TakeOtherController() {
  if (!TakeTyped()) return;
  mRunning = "Going on line with the other controller";
  mView.TakeOtherController();
  ShowTools();
}

// Out of the timer that asks: watching goes on for hours.
void frmDataTypesView::TryToWatchAgain() {
  if (!mView.IsTryDue() || mOperands->IsEditing() || mRegions->IsEditing()) return;
  if (QApplication::activePopupWidget() || (QApplication::activeModalWidget() && !isActiveWindow())) return;
  QTimer::singleShot(0, this, [this] {
    if (mView.IsTryDue()) WatchAgain(true);
  });
}

// Shortcuts and buttons leave an editor open: a write would send the text that was there before.
bool frmDataTypesView::TakeTyped() {
  return mOperands->TakeTyped() && mRegions->TakeTyped();
}

bool frmDataTypesView::OnWindowTool(std::string_view id) {
  if (id == command::kClose) {
    close();
  } else if (id == command::kGoTo) {
    mTools->GoToLine().setFocus();
    mTools->GoToLine().selectAll();
  } else if (id == command::kHideRows) {
    HideRows();
  } else if (id == command::kShowRows) {
    ShowRows();
  } else if (id == command::kWider || id == command::kNarrower) {
    mOperands->ChangeColumnWidth(id == command::kWider ? kColumnStep : -kColumnStep);
  } else if (id == command::kHelp) {
    RequestHelp(*this);
  } else {
    return false;
  }
  return true;
}

void frmDataTypesView::HideRows() {
  HiddenRows hidden = mView.Settings().hidden;
  for (const std::int32_t row : mOperands->SelectedRows()) hidden.Set(row, true);
  mView.SetHidden(hidden);
  ShowTools();
}

void frmDataTypesView::ShowRows() {
  mView.SetHidden({});
  ShowTools();
}

void frmDataTypesView::GoToPlace() {
  const auto place =
      ParsePlace(mTools->GoToLine().text().toStdString(), mOperands->CurrentType(), mView.Operands().Model());
  if (!place) {
    mView.Refuse(place.error());
    return mTools->GoToLine().selectAll();
  }
  mOperands->GoTo(*place);
  mOperands->setFocus();
}

void frmDataTypesView::done(int result) {
  if (mView.Status().mode == ViewMode::Busy) return mPacer.RequestStop();
  setFocus();  // what is being typed is taken or given back
  mView.SetLayout(mRegions->ColumnWidths(), mOperands->ColumnWidth());
  if (!mView.Close()) return;
  TellUnwritten();
  QDialog::done(result);
}

void frmDataTypesView::TellUnwritten() {
  const std::size_t edited = mView.Operands().EditedCount();
  if (!mParts.shared.Remote) return;
  if (edited > 0) {
    mParts.shared.Remote->StatusMessage("The operand view keeps " + Counted(edited, "edited value") +
                                        " in the session; the controller does not have " +
                                        (edited == 1 ? "it." : "them."));
  } else if (mHadUnwritten) {
    mParts.shared.Remote->StatusMessage("The operand view keeps no edited values any more.");
  }
}

// Escape gives back what is typed and cancels a wait; the view has too much in it to be closed by it.
void frmDataTypesView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    event->accept();
  } else {
    QDialog::keyPressEvent(event);
  }
}

}  // namespace kv
