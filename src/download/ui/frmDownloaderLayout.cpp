#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/ScrollPage.h"
#include "desktop/ui/TextLabel.h"
#include "download/ui/SideTable.h"
#include "download/ui/frmDownloader.h"

namespace kv {
namespace {

constexpr QSize kFirstSize(760, 700);
constexpr int kInformationLines = 2;
constexpr int kMostLines = 1000;

}  // namespace

frmDownloader::frmDownloader(DownloaderServices services, std::string user, QWidget* parent)
    : QDialog(parent), mServices(services), mUser(std::move(user)) {
  setObjectName("frmDownloader");
  setWindowTitle(QString::fromUtf8(kDownloaderCaption.data(), static_cast<qsizetype>(kDownloaderCaption.size())));
  setWindowIcon(IconOf("download"));
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  setAcceptDrops(true);
  resize(kFirstSize.boundedTo(screen()->availableSize()));
  auto* content = new QWidget;
  auto* lines = new QVBoxLayout(content);
  lines->setContentsMargins({});
  BuildController(*lines);
  auto* frames = new QHBoxLayout;  // beside each other, so that both are seen on a small screen
  lines->addLayout(frames);
  BuildProject(*frames);
  BuildSides(*lines);
  BuildOs(*frames);
  auto* scroll = new ScrollPage(content, this);
  scroll->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);  // more room goes to the information
  auto* page = new QVBoxLayout(this);
  page->addWidget(scroll);
  mPage = scroll;
  BuildProgress(*page);
  BuildInformation(*page);
  BuildButtons(*page);
  Connect();
  ShowController("No controller has been asked yet: " + mServices.shared.ComDriver->LinkDescription(), "");
  SetBusy({});
  mGetFile->setFocus();
}

frmDownloader::~frmDownloader() = default;

QPushButton* frmDownloader::AddButton(const char* name, const QIcon& icon, const QString& text, const QString& tip,
                                      const QString& keys) {
  auto* button = new QPushButton(icon, text, this);
  button->setObjectName(name);
  button->setAutoDefault(false);  // nothing is sent by an Enter that was meant for something else
  Describe(*button, tip, keys);
  return button;
}

void frmDownloader::BuildController(QVBoxLayout& page) {
  mController = MakeTextLabel("lblController", "The controller that is downloaded into", this);
  mController->setToolTip("The controller that is downloaded into");
  QFont bold = mController->font();
  bold.setBold(true);
  mController->setFont(bold);
  mAdvice = MakeTextLabel("lblAdvice", "What to do about the controller's state", this);
  mAdviceSign = new QLabel(this);
  mAdviceSign->setPixmap(IconOf("warning").pixmap(style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this)));
  auto* advice = new QHBoxLayout;
  advice->addWidget(mAdviceSign, 0, Qt::AlignTop);
  advice->addWidget(mAdvice, 1);
  mStart = AddButton("cmdStart", IconOf("run"), "Start &Program", "Starts the controller's program, which does not run",
                     "Alt+P");
  advice->addWidget(mStart, 0, Qt::AlignTop);
  page.addWidget(mController);
  page.addLayout(advice);
}

void frmDownloader::BuildProject(QBoxLayout& page) {
  auto* frame = new QGroupBox("Project", this);
  frame->setObjectName("fraProject");
  mGetFile = AddButton("cmdGetFile", IconOf("open"), "Select &File",
                       "Chooses the project file; it can be dropped on this window, too", "Ctrl+O");
  mDownload = AddButton("cmdDownload", IconOf("download"), "&Download",
                        "Sends the project into the controller; its program stops", "Alt+D");
  mFileName = MakeTextLabel("lblFileName", "File name", frame);
  mProjectName = MakeTextLabel("lblProjectName", "Project name", frame);
  mModel = MakeTextLabel("lblPLCModel", "PLC model", frame);
  auto* facts = new QFormLayout;
  facts->addRow("File Name:", mFileName);
  facts->addRow("Project Name:", mProjectName);
  facts->addRow("PLC Model:", mModel);
  auto* buttons = new QVBoxLayout;
  buttons->addWidget(mGetFile);
  buttons->addWidget(mDownload);
  buttons->addStretch();
  auto* row = new QHBoxLayout(frame);
  row->addLayout(facts, 1);
  row->addLayout(buttons);
  page.addWidget(frame, 1);
}

void frmDownloader::BuildSides(QVBoxLayout& page) {
  mSides = new SideTable(this);
  mPreview = MakeTextLabel("lblPreview", "Size, time, and what will be lost", this);
  mBackup = new QCheckBox("&Take a clone of the controller first, and go on only when it has been verified", this);
  mBackup->setObjectName("chkBackup");
  Describe(*mBackup,
           "Before a download, makes a clone file of what the controller holds and compares it with the controller");
  page.addWidget(mSides);
  page.addWidget(mPreview);
  page.addWidget(mBackup);
}

void frmDownloader::BuildOs(QBoxLayout& page) {
  mOsFrame = new QGroupBox("OS Downloader", this);
  mOsFrame->setObjectName("fraOSDownloader");
  mDownloadOs = AddButton("cmdDownloadOS", IconOf("download"), "Download &O/S",
                          "Replaces the operating system of the controller; you choose the file next", "Alt+O");
  auto* column = new QVBoxLayout(mOsFrame);
  column->addWidget(mDownloadOs);
  column->addStretch();
  page.addWidget(mOsFrame);
}

void frmDownloader::BuildProgress(QVBoxLayout& page) {
  mStatus = MakeTextLabel("lblStatus", "Status", this);
  mAmount = MakeTextLabel("lblAmount", "Amount, rate and remaining time", this);
  mAmount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  mBar = new QProgressBar(this);
  mBar->setObjectName("ProgressBar1");
  mBar->setAccessibleName("Progress of the download");
  mBar->setTextVisible(false);
  mPresent = new QLabel(this);
  mPresent->setObjectName("lblPresent");
  mPresent->setAccessibleName("Percentage of the download");
  ShowAsNumber(*mPresent);
  mPresent->setMinimumWidth(mPresent->fontMetrics().horizontalAdvance("100%"));
  auto* grid = new QGridLayout;
  grid->addWidget(mStatus, 0, 0);
  grid->addWidget(mAmount, 0, 1, 1, 2);
  grid->addWidget(mBar, 1, 0, 1, 2);
  grid->addWidget(mPresent, 1, 2);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(1, 1);
  page.addLayout(grid);
}

void frmDownloader::BuildInformation(QVBoxLayout& page) {
  mInformation = new QPlainTextEdit(this);
  mInformation->setObjectName("txtInformation");
  mInformation->setAccessibleName("How the download ended");
  mInformation->setPlaceholderText("How a download ended, and what the controller is left as, stands here.");
  mInformation->setReadOnly(true);
  mInformation->setTabChangesFocus(true);
  mInformation->setMaximumBlockCount(kMostLines);
  mInformation->setMinimumHeight(kInformationLines * fontMetrics().lineSpacing() + 2 * mInformation->frameWidth() + 8);
  mInformation->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);  // what is above it goes first
  page.addWidget(mInformation, 1);
  auto* help = new HelpLink(this);
  help->FollowLast(*mInformation);
  page.addWidget(help);
}

void frmDownloader::BuildButtons(QVBoxLayout& page) {
  mIdentify = AddButton("cmdIdentify", IconOf("refresh"), "&Ask Again", "Asks the controller again who it is", "F5");
  mStop = AddButton("cmdStop", IconOf("stop"), "&Stop",
                    "Ends the running download; what the controller is left as is told afterwards", "Shift+Esc");
  mClose = AddButton("cmdClose", IconOf("exit"), "&Close", "Closes this window", "Esc");
  auto* row = new QHBoxLayout;
  row->addWidget(mIdentify);
  row->addStretch();
  row->addWidget(mStop);
  row->addWidget(mClose);
  page.addLayout(row);
}

void frmDownloader::Connect() {
  connect(mGetFile, &QPushButton::clicked, this, [this] { cmdGetFile_Click(); });
  connect(mDownload, &QPushButton::clicked, this, [this] { cmdDownload_Click(); });
  connect(mDownloadOs, &QPushButton::clicked, this, [this] { cmdDownloadOS_Click(); });
  connect(mIdentify, &QPushButton::clicked, this, [this] { Identify(); });
  connect(mStart, &QPushButton::clicked, this, [this] { StartProgram(); });
  connect(mStop, &QPushButton::clicked, this, [this] { StopDownload(); });
  connect(mClose, &QPushButton::clicked, this, [this] { close(); });
  const std::pair<QKeySequence, QPushButton*> keys[] = {
      {QKeySequence("Ctrl+O"), mGetFile}, {QKeySequence("F5"), mIdentify}, {QKeySequence("Shift+Esc"), mStop}};
  for (const auto& [sequence, button] : keys) {
    connect(new QShortcut(sequence, this), &QShortcut::activated, button, &QPushButton::click);
  }
}

}  // namespace kv
