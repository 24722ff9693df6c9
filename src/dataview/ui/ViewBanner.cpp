#include "dataview/ui/ViewBanner.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "dataview/DataTypesView.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kIconSize = 24;

QLabel* Text(const char* name, const char* what, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setAccessibleName(what);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->hide();
  return label;
}

void SetText(QLabel& label, const QString& text) {
  if (label.text() != text) label.setText(text);
  label.setVisible(!text.isEmpty());
}

}  // namespace

ViewBanner::ViewBanner(DataTypesView& view, QWidget* parent)
    : QFrame(parent),
      mView(view),
      mDifference(Text("lblDifference", "What differs from the main window", this)),
      mLoss(Text("lblLoss", "Why the controller is out of reach", this)),
      mWatchAgain(new QPushButton(IconOf(Picture::Online), "&Go on line again", this)),
      mByItself(new QCheckBox(this)) {
  setObjectName("bnrController");
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  mWatchAgain->setObjectName("cmdWatchAgain");
  mWatchAgain->setAutoDefault(false);
  Describe(*mWatchAgain, "Opens the link, identifies the controller and watches the regions again", "Alt+G");
  mByItself->setObjectName("chkWatchAgain");
  connect(mWatchAgain, &QPushButton::clicked, this, [this] { onWatchAgain(); });
  connect(mByItself, &QCheckBox::clicked, this, [this](bool isSet) { mView.SetWatchesAgain(isSet); });

  auto* icon = new QLabel(this);
  icon->setPixmap(IconOf(Picture::Warning).pixmap(kIconSize, kIconSize));
  auto* texts = new QVBoxLayout;
  texts->addWidget(mDifference);
  texts->addWidget(mLoss);
  auto* ways = new QHBoxLayout;
  ways->addWidget(mWatchAgain);
  ways->addWidget(mByItself);
  ways->addStretch();
  texts->addLayout(ways);
  auto* line = new QHBoxLayout(this);
  line->addWidget(icon, 0, Qt::AlignTop);
  line->addLayout(texts, 1);
  hide();
}

void ViewBanner::Follow() {
  SetText(*mDifference, QString::fromStdString(mView.HostDifference()));
  ShowLoss();
  setVisible(!mDifference->isHidden() || !mLoss->isHidden());
}

void ViewBanner::ShowLoss() {
  const auto& loss = mView.Status().loss;
  SetText(*mLoss, loss ? QString::fromStdString(loss->Text()) : QString());
  const bool canGoOn = loss && loss->wasWatching;
  mWatchAgain->setVisible(canGoOn);
  mByItself->setVisible(canGoOn);
  if (!canGoOn) return;
  Allow(*mWatchAgain, QString::fromStdString(mView.WhyNot("ID_OnLine")));
  mByItself->setText(loss->serialNumber ? QString("&By itself, with serial number %1 only").arg(*loss->serialNumber)
                                        : QString("&By itself"));
  Describe(*mByItself, "Tries again with growing pauses until that controller answers; another one is not watched",
           "Alt+B");
  Allow(*mByItself, QString::fromStdString(mView.WhyNotByItself()));
  mByItself->setChecked(mView.WatchesAgain());
}

}  // namespace kv::mdlDataTypesView
