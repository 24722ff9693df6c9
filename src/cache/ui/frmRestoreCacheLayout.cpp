#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "cache/ui/ResultTable.h"
#include "cache/ui/frmRestoreCache.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/TextLabel.h"

// How the import wizard looks; what it does is in frmRestoreCache.cpp.
namespace kv {
namespace {

constexpr QSize kFirstSize(640, 560);
constexpr const char* kStepTexts[] = {kNoCacheChosen, "Read Fonts from PLC", "Read Images from PLC"};
constexpr const char* kBoxTips[] = {"", "Whether the fonts of the controller are read into the file",
                                    "Whether the images of the controller are read into the file"};

QString Numbered(const char* name, std::size_t number) {
  return QString(name) + QString::number(number);
}

QLabel* BoldLabel(const char* name, const char* what, QWidget* parent) {
  QLabel* label = MakeTextLabel(name, what, parent);
  QFont bold = label->font();
  bold.setBold(true);
  label->setFont(bold);
  return label;
}

}  // namespace

frmRestoreCache::frmRestoreCache(CacheServices services, QWidget* parent) : QDialog(parent), mServices(services) {
  setObjectName("frmRestoreCache");
  setWindowTitle("Import Cache from Controller");
  setWindowIcon(IconOf("cache"));
  resize(kFirstSize);
  auto* page = new QVBoxLayout(this);
  mHeader = BoldLabel("lblHeader", "Step of the import", this);
  page->addWidget(mHeader);
  BuildSteps(*page);
  BuildEnd(*page);
  BuildPages();
  page->addWidget(mPages, 1);
  BuildButtons(*page);
  ShowPage(Page::Choose);
  mBrowse->setFocus();
}

void frmRestoreCache::BuildSteps(QBoxLayout& page) {
  auto* rows = new QGridLayout();
  page.addLayout(rows);
  mBrowse = new QPushButton(IconOf("open"), "&Browse...", this);
  mBrowse->setObjectName("cmdBrowse");
  mBrowse->setAutoDefault(false);
  Describe(*mBrowse, "Chooses the cache file that is made, or one that is brought up to date", "Alt+B");
  connect(mBrowse, &QPushButton::clicked, this, [this] { Browse(); });
  for (std::size_t i = 0; i < kRows; ++i) {
    const int row = static_cast<int>(i);
    mMarks[i] = new QLabel(this);
    mMarks[i]->setObjectName(Numbered("imgStepRes", i));
    mMarks[i]->setFixedSize(mMarks[i]->fontMetrics().height(), mMarks[i]->fontMetrics().height());
    mSteps[i] = new QLabel(kStepTexts[i], this);
    mSteps[i]->setObjectName(Numbered("lblStep", i));
    mSteps[i]->setTextFormat(Qt::PlainText);
    rows->addWidget(mMarks[i], row, 0);
    rows->addWidget(mSteps[i], row, 2);
    if (i == 0) continue;
    mBoxes[i] = new QCheckBox(this);
    mBoxes[i]->setObjectName(Numbered("CheckStep", i));
    mBoxes[i]->setAccessibleName(kStepTexts[i]);
    mBoxes[i]->setChecked(true);
    Describe(*mBoxes[i], kBoxTips[i]);
    connect(mBoxes[i], &QCheckBox::toggled, this, [this] {
      EnableCommands();
      ShowAmount();
    });
    mSteps[i]->setBuddy(mBoxes[i]);
    mSteps[i]->installEventFilter(this);
    rows->addWidget(mBoxes[i], row, 1);
  }
  rows->addWidget(mBrowse, 0, 3);
  rows->setColumnStretch(2, 1);
}

void frmRestoreCache::BuildPages() {
  mPages = new QStackedWidget(this);
  mPages->setObjectName("stkPages");
  mChoosing = BuildChoosePage();
  mCreating = BuildCreatePage();
  mResults = new ResultTable(mPages);
  mKept = MakeTextLabel("lblKept", "What is kept, and what to do", mPages);
  mKept->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  for (QWidget* each : {mChoosing, mCreating, static_cast<QWidget*>(mResults), static_cast<QWidget*>(mKept)}) {
    mPages->addWidget(each);
  }
}

QWidget* frmRestoreCache::BuildChoosePage() {
  auto* page = new QWidget(mPages);
  auto* rows = new QVBoxLayout(page);
  rows->setContentsMargins({});
  QLabel* warning = MakeTextLabel("lblWarning", "What an import does", page);
  warning->setText(
      QString::fromUtf8(cache::kSystemModeWarning.data(), static_cast<qsizetype>(cache::kSystemModeWarning.size())));
  rows->addWidget(warning);
  mReadsAll = new QCheckBox("Read a&gain what the file has already", page);
  mReadsAll->setObjectName("chkReadAll");
  Describe(*mReadsAll,
           "Of a file that is a cache of this controller, only what has changed is read, unless this is checked");
  connect(mReadsAll, &QCheckBox::toggled, this, [this] { ShowAmount(); });
  rows->addWidget(mReadsAll);
  mPreviewText = MakeTextLabel("lblPreview", "How much is read, and for how long", page);
  mPreviewText->hide();
  rows->addWidget(mPreviewText);
  rows->addStretch();
  return page;
}

QWidget* frmRestoreCache::BuildCreatePage() {
  auto* page = new QWidget(mPages);
  auto* rows = new QVBoxLayout(page);
  rows->setContentsMargins({});
  mProgress = MakeTextLabel("lblProgress", "The step that runs", page);
  mBar = new QProgressBar(page);
  mBar->setObjectName("prbStatus");
  mBar->setAccessibleName("Progress of the step");
  mAmount = MakeTextLabel("lblAmount", "How far the step is", page);
  for (QWidget* each :
       {static_cast<QWidget*>(mProgress), static_cast<QWidget*>(mBar), static_cast<QWidget*>(mAmount)}) {
    rows->addWidget(each);
  }
  rows->addStretch();
  return page;
}

void frmRestoreCache::BuildEnd(QBoxLayout& page) {
  mState = BoldLabel("lblState", "How the import went", this);
  mReason = MakeTextLabel("lblReason", "What happened, why, and what to do", this);
  mHelpLink = new HelpLink(this);
  mState->hide();
  mReason->hide();
  page.addWidget(mState);
  page.addWidget(mReason);
  page.addWidget(mHelpLink);
}

void frmRestoreCache::BuildButtons(QBoxLayout& page) {
  auto* row = new QHBoxLayout();
  page.addLayout(row);
  mHelp = AddButton(*row, "cmdHelp", IconOf("help"), "&Help");
  mHelp->setShortcut(QKeySequence("F1"));
  row->addStretch();
  mBack = AddButton(*row, "cmdBack", IconOf("back"), "Bac&k");
  mNext = AddButton(*row, "cmdNext", IconOf("forward"), "");
  mNext->setDefault(true);
  mCancel = AddButton(*row, "cmdCancel", IconOf("stop"), "&Cancel");
  Describe(*mHelp, "Opens the help on this wizard", "F1");
  Describe(*mBack, "Chooses another file", "Alt+K");
  connect(mHelp, &QPushButton::clicked, this, [this] { OpenHelp(); });
  connect(mBack, &QPushButton::clicked, this, [this] { Back(); });
  connect(mNext, &QPushButton::clicked, this, [this] { Next(); });
  connect(mCancel, &QPushButton::clicked, this, [this] { reject(); });
}

QPushButton* frmRestoreCache::AddButton(QBoxLayout& row, const char* name, const QIcon& icon, const QString& text) {
  auto* button = new QPushButton(icon, text, this);
  button->setObjectName(name);
  row.addWidget(button);
  return button;
}

}  // namespace kv
