#include "host/ui/frmLogIn.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/SecretField.h"
#include "host/LogIn.h"

namespace kv {
namespace {

constexpr int kNameWidth = 32;  // in characters

}  // namespace

frmLogIn::frmLogIn(SharedState& shared, QWidget* parent) : QDialog(parent), mShared(shared) {
  setObjectName("frmLogIn");
  setWindowTitle("Log In");
  setWindowIcon(IconOf("login"));
  BuildFields();
  ArrangeControls();
}

frmLogIn::~frmLogIn() {
  TakeSecret(*mPassword).Clear();  // what was typed and cancelled
}

void frmLogIn::BuildFields() {
  mUserName = new QLineEdit(QString::fromStdString(LastUserName(mShared)), this);
  mUserName->setObjectName("txtUserName");
  mUserName->setMaxLength(static_cast<int>(kLongestUserName));
  mUserName->setMinimumWidth(kNameWidth * fontMetrics().averageCharWidth());
  mUserName->setToolTip("Stands in the status bar, and in the records of what was changed (Alt+U)");
  mPassword = new QLineEdit(this);
  mPassword->setObjectName("txtPassword");
  mPassword->setMaxLength(static_cast<int>(kLongestUserName));  // what no controller can have is not sent to one
  mPassword->setToolTip("Tried first when a controller wants its password; never written to disk (Alt+P)");
  MakeSecret(*mPassword);
  mUserName->selectAll();  // whoever comes may be another one
  mUserName->setFocus();
}

void frmLogIn::ArrangeControls() {
  auto* now = new QLabel(
      mShared.UserName.empty() ? "Nobody is logged in." : "Logged in now: " + QString::fromStdString(mShared.UserName),
      this);
  now->setObjectName("lblNow");
  now->setTextFormat(Qt::PlainText);
  now->setWordWrap(true);
  auto* fields = new QFormLayout;
  fields->addRow("&User name:", mUserName);
  fields->addRow("&Password:", mPassword);
  mUserName->setAccessibleName("User name");
  mPassword->setAccessibleName("Password");
  auto* hint = new QLabel(
      "The password is tried first when a controller wants one; the cloner asks for it itself. It is kept in memory "
      "until "
      "you log off, and nowhere else.",
      this);
  hint->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton& ok = *buttons->button(QDialogButtonBox::Ok);
  QPushButton& cancel = *buttons->button(QDialogButtonBox::Cancel);
  ok.setObjectName("cmdOk");
  cancel.setObjectName("cmdCancel");
  Describe(ok, "Logs this user in", "Enter");
  Describe(cancel, "Leaves everything as it is", "Esc");
  connect(&ok, &QPushButton::clicked, this, [this] {
    Cancelled = false;
    accept();
  });
  connect(&cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* page = new QVBoxLayout(this);
  page->addWidget(now);
  page->addLayout(fields);
  page->addWidget(hint);
  page->addStretch();
  page->addWidget(buttons);
}

void frmLogIn::SetUserNameAndPassword() {
  Cancelled = true;
  QDialog::exec();
  if (!Cancelled) LogIn(mShared, mUserName->text().toStdString(), TakeSecret(*mPassword));
}

int frmLogIn::exec() {
  SetUserNameAndPassword();
  return result();
}

}  // namespace kv
