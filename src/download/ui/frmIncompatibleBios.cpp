#include "download/ui/frmIncompatibleBios.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/RunDialog.h"

namespace kv {
namespace {

constexpr const char* kMightErase =
    "Note that completing this action might erase the project currently installed in the PLC.";
constexpr const char* kSaveFirst =
    "If you have not backed up this project, you may wish to stop, upload and save this project before completing this "
    "action.";
constexpr const char* kNotTicked = "Tick the box above first.";
constexpr int kTextWidth = 44;  // in characters

QLabel* Paragraph(const char* text, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(kTextWidth * label->fontMetrics().averageCharWidth());
  return label;
}

}  // namespace

frmIncompatibleBios::frmIncompatibleBios(QWidget* parent) : QDialog(parent) {
  setObjectName("frmIncompatibleBios");
  setWindowTitle("Warning");
  setWindowIcon(IconOf("warning"));
  mDelete = new QCheckBox("Continue &without saving project ?", this);
  mDelete->setObjectName("chkDelete");
  Describe(*mDelete, "Continue can be pressed only while this is ticked");
  mAbort = new QPushButton("&Abort", this);
  mAbort->setObjectName("cmdAbort");
  mAbort->setDefault(true);
  Describe(*mAbort, "Leaves the controller as it is", "Esc");
  mContinue = new QPushButton("&Continue", this);
  mContinue->setObjectName("cmdContinue");
  mContinue->setAutoDefault(false);  // Enter is never a consent here
  Describe(*mContinue, "Goes on although the project in the controller may be lost");
  Allow(*mContinue, kNotTicked);
  connect(mDelete, &QCheckBox::clicked, this,
          [this](bool isTicked) { Allow(*mContinue, isTicked ? QString() : QString(kNotTicked)); });
  connect(mAbort, &QPushButton::clicked, this, &QDialog::reject);
  connect(mContinue, &QPushButton::clicked, this, [this] {
    mAnswer = BiosAnswer::Continue;
    accept();
  });

  auto* sign = new QLabel(this);
  const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
  sign->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size));
  auto* texts = new QVBoxLayout;
  texts->addWidget(Paragraph(kMightErase, this));
  texts->addWidget(Paragraph(kSaveFirst, this));
  texts->addWidget(mDelete);
  auto* top = new QHBoxLayout;
  top->addWidget(sign, 0, Qt::AlignTop);
  top->addLayout(texts, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(mAbort);
  buttons->addWidget(mContinue);
  auto* page = new QVBoxLayout(this);
  page->addLayout(top, 1);
  page->addLayout(buttons);
}

BiosAnswer frmIncompatibleBios::ShowMessage() {
  mAnswer = BiosAnswer::Abort;
  RunDialog(*this);
  return mAnswer;
}

}  // namespace kv
