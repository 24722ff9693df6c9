#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLC.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/HelpRequest.h"
#include "desktop/ui/Icons.h"

namespace kv {
namespace {

constexpr QSize kFirstSize(720, 600);
constexpr int kGridHeight = 330;
constexpr int kInformationHeight = 150;
constexpr int kScrollPause = 50;  // milliseconds
constexpr int kMostLines = 1000;  // of the information

}  // namespace

frmDumpPLC::frmDumpPLC(ClonerServices services, QWidget* parent) : QDialog(parent), mServices(services) {
  setObjectName("frmDumpPLC");
  setWindowTitle(QString::fromUtf8(kClonerCaption.data(), static_cast<qsizetype>(kClonerCaption.size())));
  setWindowIcon(IconOf("clone"));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  resize(kFirstSize.boundedTo(screen()->availableSize()));
  BuildTools();
  BuildWhose();
  BuildGrid();
  BuildProgress();
  ArrangeControls();
  EnableCommands(true);
  mGrid->setFocus();
}

void frmDumpPLC::BuildTools() {
  mTools = new QToolBar(this);
  mTools->setObjectName("barMain");
  mTools->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  mCreate = AddTool("ID_CreateGhost", IconOf("clone"), "&Create Clone", QKeySequence("Ctrl+N"),
                    "Copies the memory of the connected controller into a clone file");
  mRestore = AddTool("ID_RestoreGhost", IconOf("download"), "&Restore Clone", QKeySequence("Ctrl+R"),
                     "Writes a clone file into the connected controller");
  mVerify = AddTool("ID_VerifyClone", IconOf("test"), "&Verify", QKeySequence("Ctrl+T"),
                    "Reads the connected controller and compares it with a clone file, byte by byte");
  mCompare = AddTool("ID_CompareClones", IconOf("search"), "Com&pare", QKeySequence("Ctrl+D"),
                     "Compares two clone files, byte by byte; no controller is needed");
  mStop =
      AddTool("ID_StopDump", IconOf("stop"), "&Stop", QKeySequence("Shift+Esc"),
              "Ends the running operation. A restore that is stopped leaves the controller with a part of the clone");
  mExit = AddTool("ID_Exit", IconOf("exit"), "E&xit", QKeySequence("Ctrl+W"), "Closes this window");
  mHelp = AddTool("ID_ClonerHelp", IconOf("help"), "&Help", QKeySequence("F1"), "Opens the help on cloning");
  connect(mCreate, &QAction::triggered, this, [this] { CreateClone(); });
  connect(mRestore, &QAction::triggered, this, [this] { RestoreClone(); });
  connect(mVerify, &QAction::triggered, this, [this] { VerifyClone(); });
  connect(mCompare, &QAction::triggered, this, [this] { CompareClones(); });
  connect(mStop, &QAction::triggered, this, [this] { StopDump(); });
  connect(mExit, &QAction::triggered, this, [this] { close(); });
  connect(mHelp, &QAction::triggered, this, [this] { RequestHelp(*this); });
}

QAction* frmDumpPLC::AddTool(const char* id, const QIcon& icon, const QString& text, const QKeySequence& shortcut,
                             const QString& tip) {
  QAction* tool = mTools->addAction(icon, text);
  tool->setObjectName(id);
  tool->setShortcut(shortcut);
  Describe(*tool, tip);
  mTools->widgetForAction(tool)->setFocusPolicy(Qt::StrongFocus);  // all by keyboard
  return tool;
}

void frmDumpPLC::BuildWhose() {
  mWhose = new QLabel(this);
  mWhose->setObjectName("lblController");
  mWhose->setAccessibleName("The controller whose memory is read and written");
  mWhose->setToolTip("The controller whose memory is read and written here");
  mWhose->setTextFormat(Qt::PlainText);
  mWhose->setWordWrap(true);
  mWhose->setTextInteractionFlags(Qt::TextSelectableByMouse);
  QFont bold = mWhose->font();
  bold.setBold(true);
  mWhose->setFont(bold);
  ShowWhoseMemory("No controller has been asked yet: " + mServices.shared.ComDriver->LinkDescription());
}

void frmDumpPLC::BuildGrid() {
  mRows = new DumpList(this);
  mGrid = new QTableView(this);
  mGrid->setObjectName("vsSegments");
  mGrid->setAccessibleName("Segments, or command lines of a restore");
  mGrid->setToolTip("The segments of the controller while a clone is created, the command lines while one is restored");
  mGrid->setModel(mRows);
  mGrid->setFont(FixedFont(mGrid->font()));
  mGrid->setSelectionMode(QAbstractItemView::SingleSelection);
  mGrid->setSelectionBehavior(QAbstractItemView::SelectRows);
  mGrid->setTabKeyNavigation(false);
  mGrid->setWordWrap(false);
  mGrid->horizontalHeader()->setStretchLastSection(true);
  mGrid->horizontalHeader()->setHighlightSections(false);
  mGrid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  mGrid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  mGrid->verticalHeader()->setDefaultSectionSize(mGrid->fontMetrics().height() + 4);
  mGrid->verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
  mScroll.setSingleShot(true);
  mScroll.setInterval(kScrollPause);
  connect(&mScroll, &QTimer::timeout, mGrid, [this] { mGrid->scrollToBottom(); });
}

QWidget* frmDumpPLC::BuildBoxes() {
  auto* frame = new QGroupBox("Segments to clone", this);
  frame->setObjectName("fSegments");
  auto* lines = new QVBoxLayout(frame);
  const auto add = [&](const char* name, const QString& text, const QString& tip) {
    auto* box = new QCheckBox(text, frame);
    box->setObjectName(name);
    box->setChecked(true);
    Describe(*box, tip);
    lines->addWidget(box);
    return box;
  };
  mOp = add("chkOP", "&OP  operands", "Whether a new clone file takes the segment OP, the operands");
  mDt = add("chkDT", "&DT  data tables", "Whether a new clone file takes the segment DT, the data tables");
  mAp = add("chkAP", "&AP  application", "Whether a new clone file takes the segment AP, the application");
  mOs = add("chkOS", "O&S  operating system", "Whether a new clone file takes the segment OS, the operating system");
  auto* always = new QLabel("HW, FT and MM are\nalways taken.", frame);
  lines->addWidget(always);
  lines->addStretch();
  mSaveFirst = new QCheckBox("Save &first what a restore\nis about to overwrite", frame);
  mSaveFirst->setObjectName("chkSaveFirst");
  Describe(*mSaveFirst, "Before a restore, makes a clone file of what the controller holds then");
  lines->addWidget(mSaveFirst);
  mVerified = new QComboBox(frame);
  mVerified->setObjectName("cboVerify");
  mVerified->addItems({"All segments", "Program, settings", "Values (OP, DT)"});  // in the order of ComparedKinds
  mVerified->setAccessibleName("What Verify compares");
  mVerified->setToolTip("What Verify compares; a running program changes values by itself");
  auto* verified = new QLabel("Verify co&mpares", frame);
  verified->setBuddy(mVerified);
  lines->addWidget(verified);
  lines->addWidget(mVerified);
  auto* scroll = new QScrollArea(this);  // on a small screen the boxes give way
  scroll->setWidget(frame);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setFixedWidth(frame->sizeHint().width() + scroll->verticalScrollBar()->sizeHint().width());
  return scroll;
}

void frmDumpPLC::BuildProgress() {
  mProgressBar = new QProgressBar(this);
  mProgressBar->setObjectName("ProgressBar");
  mProgressBar->setAccessibleName("Progress of the segment, or of the restore");
  mProgressText = new QLabel(this);
  mProgressText->setObjectName("lblProgress");
  mProgressText->setTextFormat(Qt::PlainText);
  mInformation = new QPlainTextEdit(this);
  mInformation->setObjectName("txtInformation");
  mInformation->setAccessibleName("Information on the operation");
  mInformation->setPlaceholderText(
      "What is found in a file or in a comparison, and how an operation ended, stands here.");
  mInformation->setReadOnly(true);
  mInformation->setTabChangesFocus(true);
  mInformation->setMaximumBlockCount(kMostLines);
}

void frmDumpPLC::ArrangeControls() {
  auto* bar = new QWidget(this);
  bar->setObjectName("abGhost");
  auto* tools = new QVBoxLayout(bar);
  tools->setContentsMargins({});
  tools->addWidget(mTools);
  auto* top = new QWidget(this);
  auto* row = new QHBoxLayout(top);
  row->setContentsMargins({});
  row->addWidget(mGrid, 1);
  row->addWidget(BuildBoxes());
  auto* parts = new QSplitter(Qt::Vertical, this);
  parts->setObjectName("splDump");
  parts->setChildrenCollapsible(false);
  parts->addWidget(top);
  parts->addWidget(mInformation);
  parts->setStretchFactor(0, 1);
  parts->setStretchFactor(1, 0);
  parts->setSizes({kGridHeight, kInformationHeight});
  auto* help = new HelpLink(this);
  help->FollowLast(*mInformation);
  auto* page = new QVBoxLayout(this);
  page->addWidget(bar);
  page->addWidget(mWhose);
  page->addWidget(parts, 1);
  page->addWidget(help);
  page->addWidget(mProgressBar);
  page->addWidget(mProgressText);
}

}  // namespace kv
