#include "dataview/ui/ViewBanner.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "dataview/DataTypesView.h"
#include "dataview/ui/ScrolledText.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/TextLabel.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kIconSize = 24;

ScrolledText* Text(const char* name, const char* what, QWidget* parent) {
  return new ScrolledText(MakeTextLabel(name, what, nullptr), parent);
}

}  // namespace

ViewBanner::ViewBanner(DataTypesView& view, QWidget* parent)
    : QFrame(parent),
      mView(view),
      mDifference(Text("lblDifference", "What differs from the main window", this)),
      mLoss(Text("lblLoss", "What was refused, or why the controller is out of reach", this)),
      mGoOn(new QPushButton(IconOf("online"), "&Go on line again", this)),
      mByItself(new QCheckBox(this)),
      mFold(new QPushButton(this)),
      mHelp(new HelpLink(this)) {
  setObjectName("bnrController");
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  mGoOn->setObjectName("cmdWatchAgain");
  mGoOn->setAutoDefault(false);
  mByItself->setObjectName("chkWatchAgain");
  connect(mGoOn, &QPushButton::clicked, this, [this] { onGoOn(); });
  mFold->setObjectName("cmdFold");
  mFold->setAutoDefault(false);
  connect(mFold, &QPushButton::clicked, this, [this] { Fold(!mIsFolded); });
  Fold(false);
  connect(mByItself, &QCheckBox::clicked, this, [this](bool isSet) { mView.SetWatchesAgain(isSet); });

  auto* icon = new QLabel(this);
  icon->setPixmap(IconOf("warning").pixmap(kIconSize, kIconSize));
  auto* texts = new QVBoxLayout;
  texts->addWidget(mDifference);
  texts->addWidget(mLoss);
  auto* ways = new QHBoxLayout;
  ways->addWidget(mGoOn);
  ways->addWidget(mByItself);
  ways->addWidget(mHelp);
  ways->addStretch();
  ways->addWidget(mFold);
  texts->addLayout(ways);
  auto* line = new QHBoxLayout(this);
  line->addWidget(icon, 0, Qt::AlignTop);
  line->addLayout(texts, 1);
  hide();
}

void ViewBanner::Fold(bool isFolded) {
  mIsFolded = isFolded;
  mDifference->Fold(isFolded);
  mLoss->Fold(isFolded);
  mFold->setText(isFolded ? "Sho&w more" : "Sho&w less");
  Describe(*mFold, isFolded ? "Shows the whole text" : "Shows the first line only, and leaves the grids their room",
           "Alt+W");
}

void ViewBanner::Follow() {
  const bool isOther = mDifference->SetText(QString::fromStdString(mView.HostDifference()));
  if (ShowLoss() || isOther) Fold(false);
  setVisible(!mDifference->isHidden() || !mLoss->isHidden());
}

bool ViewBanner::ShowLoss() {
  const ViewStatus& status = mView.Status();
  const std::string lost = status.loss ? status.loss->Text() : std::string();
  const QString text = QString::fromStdString(status.refusal.empty() ? lost : status.refusal);
  const bool isOther = mLoss->SetText(text);
  mHelp->Follow(text);
  const bool wasWatching = status.loss && status.loss->wasWatching;
  mGoOn->setVisible(mView.IsOtherController() ? mView.CanTakeOther() : wasWatching);
  mByItself->setVisible(wasWatching);
  if (!mGoOn->isHidden()) ShowGoOn();
  if (wasWatching) ShowByItself(*status.loss);
  return isOther;
}

void ViewBanner::ShowGoOn() {
  const bool isOther = mView.IsOtherController();
  mGoOn->setText(isOther ? "&Go on line with this one" : "&Go on line again");
  Describe(*mGoOn,
           isOther ? "Closes the link and opens it anew, to the controller that answers now"
                   : "Opens the link, identifies the controller and watches the regions again",
           "Alt+G");
  Allow(*mGoOn, QString::fromStdString(mView.WhyNot(isOther ? "ID_ReadAll" : "ID_OnLine")));
}

void ViewBanner::ShowByItself(const LinkLoss& loss) {
  mByItself->setText(loss.serialNumber ? QString("&By itself, with serial number %1 only").arg(*loss.serialNumber)
                                       : QString("&By itself"));
  Describe(*mByItself, "Tries again with growing pauses until that controller answers; another one is not watched",
           "Alt+B");
  Allow(*mByItself, QString::fromStdString(mView.WhyNotByItself()));
  mByItself->setChecked(mView.WatchesAgain());
}

}  // namespace kv::mdlDataTypesView
