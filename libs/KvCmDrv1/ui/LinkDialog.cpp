#include "KvCmDrv1/ui/LinkDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/ScrollPage.h"

namespace kv {

LinkDialog::LinkDialog(const LinkSettings& current, const std::string& caller, const LinkChoices& choices,
                       QWidget* parent)
    : QDialog(parent),
      mBefore(current),
      mChecked{current, {}},
      mFields(new LinkFields(choices.models, choices.listPorts, this)),
      mFault(new QLabel(this)),
      mBelow(new QVBoxLayout),
      mButtons(new QHBoxLayout) {
  mFault->setObjectName("lblFault");
  mFault->setTextFormat(Qt::PlainText);
  mFault->setWordWrap(true);

  auto* standard = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  mOk = standard->button(QDialogButtonBox::Ok);
  mOk->setObjectName("cmdOk");
  mOk->setText("&OK");  // a letter that no button takes would be typed into the field with the focus
  Describe(*mOk, "Keeps these settings in the session", "Enter");
  QPushButton* cancel = standard->button(QDialogButtonBox::Cancel);
  cancel->setObjectName("cmdCancel");
  cancel->setText("&Cancel");
  Describe(*cancel, "Closes this window and changes nothing", "Esc");
  mTabs = {mOk, cancel};
  connect(standard, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(standard, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* bottom = new QHBoxLayout;
  bottom->addLayout(mButtons);
  bottom->addStretch();
  bottom->addWidget(standard);
  auto* page = new QVBoxLayout(this);
  if (!caller.empty()) {
    auto* subCaption = new QLabel(QString::fromStdString(caller), this);
    subCaption->setObjectName("lblCaller");
    subCaption->setTextFormat(Qt::PlainText);
    page->addWidget(subCaption);
  }
  auto* content = new QWidget;
  auto* scrolled = new QVBoxLayout(content);
  scrolled->setContentsMargins({});
  scrolled->addWidget(mFields);
  scrolled->addWidget(mFault);
  scrolled->addLayout(mBelow);
  scrolled->addStretch();
  page->addWidget(new ScrollPage(content, this));
  page->addLayout(bottom);
}

void LinkDialog::AddButton(QPushButton* button) {
  mButtons->addWidget(button);
  mTabs.insert(mTabs.end() - 2, button);
}

void LinkDialog::BeginTabsWith(QWidget* control) {
  QWidget* last = mFields->PutBehind(control);
  for (QWidget* next : mTabs) {
    setTabOrder(last, next);
    last = next;
  }
}

void LinkDialog::Check() {
  mChecked = CheckInput(mFields->Input(), mBefore);
  mFields->MarkFaults(mChecked.faults);
  const QString fault = mChecked.faults.empty() ? "" : QString::fromStdString(mChecked.faults.front().text);
  mFault->setText(fault);
  mFault->setVisible(!fault.isEmpty());
  Allow(*mOk, fault);
}

}  // namespace kv
