#include "KvTele2/ui/StatusFields.h"

#include <QLabel>

#include "desktop/ui/ElidedLabel.h"

namespace kv {

StatusFields::StatusFields(QWidget* parent)
    : QStatusBar(parent),
      mMessage(new ElidedLabel(this)),
      mLink(AddField("lblLink", "Link")),
      mSession(AddField("lblSession", "Session")),
      mUser(AddField("lblUser", "User")),
      mConnection(AddField("lblOnline", "Connection")) {
  setObjectName("statusBar");
  mMessage->setObjectName("lblMessage");
  mMessage->setAccessibleName("Message");
  addWidget(mMessage, 1);
}

QLabel* StatusFields::AddField(const char* name, const char* what) {
  auto* field = new QLabel(this);
  field->setObjectName(name);
  field->setAccessibleName(what);
  field->setToolTip(what);
  field->setTextFormat(Qt::PlainText);
  field->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  field->setMargin(2);
  addPermanentWidget(field);
  return field;
}

void StatusFields::Show(const HostState& state) {
  mMessage->SetFullText(QString::fromStdString(state.message));
  mLink->setText(QString::fromStdString(state.link));
  mSession->setText("Session " + QString::fromStdString(state.session));
  mUser->setText(state.user.empty() ? "Nobody logged in" : QString::fromStdString(state.user));
  mConnection->setText(QString::fromStdString(ConnectionText(state)));
}

}  // namespace kv
