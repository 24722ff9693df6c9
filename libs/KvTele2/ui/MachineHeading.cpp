#include "KvTele2/ui/MachineHeading.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "KvTele2/HostCommands.h"
#include "KvTele2/ui/SignMark.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/ScrollPage.h"
#include "desktop/ui/TextLabel.h"

namespace kv {
namespace {

constexpr double kLarge = 1.6;  // of the usual size

// What the heading is about: the machine where its state is known, else the link.
Sign HeadingSign(const HostState& state) {
  const bool isAnswered = state.connection == ConnectionState::Online && !state.isSilent;
  return isAnswered ? MachineSign(state) : LinkSign(state);
}

}  // namespace

MachineHeading::MachineHeading(OnCommand onCommand, QWidget* parent)
    : QWidget(parent), mOnCommand(std::move(onCommand)) {
  setObjectName("pageController");
  mMark = new SignMark(this, kLarge);
  mHeading = new ElidedLabel(this);
  mHeading->setObjectName("lblConnection");
  QFont large = mHeading->font();
  large.setPointSizeF(kLarge * large.pointSizeF());
  mHeading->setFont(large);
  mAddress = new ElidedLabel(this);
  mAddress->setObjectName("lblAddress");

  auto* rows = new QGridLayout;
  rows->addWidget(mMark, 0, 0);
  rows->addWidget(mHeading, 0, 1);
  rows->addWidget(mAddress, 1, 1);
  rows->setColumnStretch(1, 1);
  auto* page = new QVBoxLayout(this);
  page->addLayout(rows);
  mTroubleBox = new ScrollPage(BuildTrouble(), this);
  mTroubleBox->setMinimumWidth(1);  // what does not fit scrolls
  page->addWidget(mTroubleBox);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
}

QWidget* MachineHeading::BuildTrouble() {
  auto* box = new QWidget(this);
  mTrouble = MakeTextLabel("lblTrouble", "What is wrong with the connection", box);
  mHelp = new HelpLink(box);
  mRetry = new QLabel(box);
  mRetry->setObjectName("lblRetry");
  mRetry->setAccessibleName("When the controller is looked for again");
  mRetry->setTextFormat(Qt::PlainText);
  mTryNow =
      MakeButton("cmdTryNow", IconOf("refresh"), command::kOnLine, "Connects anew, without waiting for the next try");
  mTryNow->setText("Try &Now");
  mTakeModel = MakeButton("cmdTakeModel", IconOf("take"), command::kTakeModel,
                          "Selects the controller's model, and goes on line anew");

  auto* actions = new QHBoxLayout;
  actions->addWidget(mRetry);
  actions->addWidget(mTryNow);
  actions->addWidget(mTakeModel);
  actions->addWidget(mHelp);
  actions->addStretch(1);
  auto* rows = new QVBoxLayout(box);
  rows->setContentsMargins({});
  rows->addWidget(mTrouble);
  rows->addLayout(actions);
  return box;
}

QPushButton* MachineHeading::MakeButton(const char* name, const QIcon& icon, std::string_view id, const char* tip) {
  auto* button = new QPushButton(icon, "", this);
  button->setObjectName(name);
  Describe(*button, tip);
  connect(button, &QPushButton::clicked, this, [this, id] { mOnCommand(id); });
  return button;
}

void MachineHeading::Show(const HostState& state) {
  mMark->Show(HeadingSign(state));
  mHeading->SetFullText(QString::fromStdString(HeadingText(state)));
  mAddress->SetFullText(QString::fromStdString(state.link));
  mTrouble->setText(QString::fromStdString(state.trouble).remove('\r'));
  mTrouble->setVisible(!state.trouble.empty());
  mHelp->Follow(mTrouble->text());
  const QString retry = QString::fromStdString(RetryText(state));
  mRetry->setText(retry);
  mRetry->setVisible(!retry.isEmpty());
  mTryNow->setVisible(state.connection == ConnectionState::Lost && !state.isWithTool);
  const QString model = QString::fromStdString(OtherModel(state));
  mTakeModel->setText("Take &Over " + model);
  mTakeModel->setVisible(!model.isEmpty());
  mTroubleBox->setVisible(!state.trouble.empty() || !retry.isEmpty() || !model.isEmpty());
  FitTrouble();
}

// Without its name it is on a screen of few lines: what is wrong scrolls there, and where nothing is, no room is taken.
void MachineHeading::ShowName(bool isShown) {
  constexpr int kFewestLines = 2;
  mTroubleBox->setMinimumHeight(isShown ? 0 : kFewestLines * fontMetrics().lineSpacing());
  const int margin = isShown ? style()->pixelMetric(QStyle::PM_LayoutTopMargin) : 0;
  const QMargins margins = layout()->contentsMargins();
  layout()->setContentsMargins(margins.left(), margin, margins.right(), margin);
  for (QWidget* part :
       {static_cast<QWidget*>(mMark), static_cast<QWidget*>(mHeading), static_cast<QWidget*>(mAddress)}) {
    part->setVisible(isShown);
  }
}

void MachineHeading::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  FitTrouble();
}

// As high as its text is in this width, not as it would be in a narrower one.
void MachineHeading::FitTrouble() {
  const QWidget& content = *mTroubleBox->widget();
  const QMargins margins = layout()->contentsMargins();
  content.layout()->activate();
  const int room = width() - margins.left() - margins.right();
  const int height = content.hasHeightForWidth() ? content.heightForWidth(room) : content.sizeHint().height();
  mTroubleBox->setMaximumHeight(std::max(height, 0));
}

}  // namespace kv
