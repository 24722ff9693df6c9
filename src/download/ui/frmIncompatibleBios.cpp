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
#include "download/BiosWarning.h"

namespace kv {
namespace {

constexpr const char* kNotTicked = "Tick the box above first.";
constexpr int kTextWidth = 44;  // in characters

QString TextOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QLabel* Paragraph(std::string_view text, QWidget* parent) {
  auto* label = new QLabel(TextOf(text), parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(kTextWidth * label->fontMetrics().averageCharWidth());
  return label;
}

}  // namespace

frmIncompatibleBios::frmIncompatibleBios(QWidget* parent) : QDialog(parent) {
  setObjectName("frmIncompatibleBios");
  setWindowTitle(TextOf(kBiosWarningTitle));
  setWindowIcon(IconOf("warning"));
  mDelete = new QCheckBox(TextOf(kBiosContinue).replace("without", "&without"), this);
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
  texts->addWidget(Paragraph(kBiosMightErase, this));
  texts->addWidget(Paragraph(kBiosSaveFirst, this));
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
  mDelete->setChecked(false);  // a consent of an earlier time is none
  Allow(*mContinue, kNotTicked);
  RunDialog(*this);
  return mAnswer;
}

}  // namespace kv
