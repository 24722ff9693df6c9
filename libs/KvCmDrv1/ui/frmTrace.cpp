#include "KvCmDrv1/ui/frmTrace.h"

#include <QAction>
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/RunDialog.h"

namespace kv {
namespace {

constexpr std::chrono::milliseconds kInterval{100};  // an eye sees no difference to at once
constexpr QSize kFirstSize(900, 400);
// The longest text of each column to be seen whole at first.
constexpr const char* kWidest[TraceModel::ColumnCount] = {"00:00:00.000000", "Received", "frmDataTypesView",
                                                          "/01RO00050300640003FA2E5EA5A5", "unit 1: read MI 0..59"};

}  // namespace

frmTrace::frmTrace(std::shared_ptr<Trace> trace, Prompts& prompts, Clipboard& clipboard)
    : mTrace(std::move(trace)), mPrompts(prompts), mClipboard(clipboard), mModel(mTrace) {
  setObjectName("frmTrace");
  setProperty(kStandsBeside, true);
  setWindowTitle("Trace of the link");
  setWindowIcon(IconOf("trace"));
  resize(kFirstSize);
  BuildTable();
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins({});
  page->addWidget(BuildCommands());
  page->addWidget(mTable);
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
  mTimer.setInterval(kInterval);
  connect(&mTimer, &QTimer::timeout, this, [this] { Update(); });
  mTable->setFocus();
}

QToolBar* frmTrace::BuildCommands() {
  auto* bar = new QToolBar(this);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  mPause = bar->addAction(IconOf("pause"), "&Pause");
  mPause->setObjectName("cmdPause");
  mPause->setCheckable(true);
  mPause->setShortcut(Qt::CTRL | Qt::Key_P);
  Describe(*mPause, "Halts the list; what passes meanwhile is shown afterwards, as far as it is kept");
  QAction* copy = bar->addAction(IconOf("copy"), "&Copy");
  copy->setObjectName("cmdCopy");
  copy->setShortcut(QKeySequence::Copy);
  Describe(*copy, "Copies the selected entries, or all of them");
  connect(copy, &QAction::triggered, this, [this] { Copy(); });
  mWrite = bar->addAction(IconOf("save"), "&Write to file...");
  mWrite->setObjectName("cmdWriteToFile");
  mWrite->setCheckable(true);
  mWrite->setShortcut(QKeySequence::Save);
  connect(mWrite, &QAction::triggered, this, [this](bool on) { WriteToFile(on); });
  ShowFile();
  return bar;
}

void frmTrace::BuildTable() {
  mTable = new QTableView(this);
  mTable->setObjectName("flgTrace");
  mTable->setAccessibleName("Frames");
  mTable->setModel(&mModel);
  mTable->setSelectionBehavior(QAbstractItemView::SelectRows);
  mTable->setTabKeyNavigation(false);
  mTable->setWordWrap(false);
  mTable->verticalHeader()->hide();
  mTable->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  mTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 5 / 4);
  mTable->horizontalHeader()->setStretchLastSection(true);
  mTable->horizontalHeader()->setHighlightSections(false);
  mTable->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  const QFontMetrics letters(FixedFont(mTable->font()));
  for (int column = 0; column < TraceModel::ColumnCount; ++column) {
    mTable->setColumnWidth(column, letters.horizontalAdvance(kWidest[column]) + 2 * letters.averageCharWidth());
  }
}

void frmTrace::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Update();
  mTimer.start();
}

void frmTrace::hideEvent(QHideEvent* event) {
  mTimer.stop();
  QWidget::hideEvent(event);
}

// Goes along with the newest entry unless the user has scrolled away from it.
void frmTrace::Update() {
  if (mPause->isChecked()) return;
  const QScrollBar* bar = mTable->verticalScrollBar();
  const bool wasAtEnd = bar->value() >= bar->maximum();
  mModel.Update();
  if (wasAtEnd) mTable->scrollToBottom();
}

void frmTrace::Copy() {
  QModelIndexList chosen = mTable->selectionModel()->selectedRows();
  std::ranges::sort(chosen, {}, &QModelIndex::row);
  std::string text;
  for (const QModelIndex& index : chosen) text += mModel.Line(index.row()) + "\n";
  for (int row = 0; chosen.isEmpty() && row < mModel.rowCount(); ++row) text += mModel.Line(row) + "\n";
  mClipboard.SetText(text);
}

void frmTrace::WriteToFile(bool on) {
  const OwnCommand command(*this);
  std::string path;
  if (on) {
    path = mPrompts
               .SaveFile({.title = "Write the trace to",
                          .filter = "Trace files|*.txt",
                          .purpose = "Traces",
                          .initial = "trace.txt"})
               .value_or("");
  }
  if (!mTrace->WriteTo(path)) {
    mPrompts.Show({.text = path +
                           " cannot be written.\r\nThe folder or the file may be write-protected. Choose another "
                           "place.",
                   .title = "Trace",
                   .icon = PromptIcon::Exclamation});
  }
  ShowFile();
}

void frmTrace::ShowFile() {
  const bool isWriting = !mTrace->File().empty();
  mWrite->setChecked(isWriting);
  Describe(*mWrite, isWriting ? "Writing to " + QString::fromStdString(mTrace->File()) + "; ends it"
                              : QString("Writes every entry from now on to a file"));
}

}  // namespace kv
