#include "KvTele2/ui/StatusFields.h"

#include <QLabel>

namespace kv {

StatusFields::StatusFields(QWidget* parent)
    : MessageBar(parent),
      mLink(AddField("lblLink", "Link")),
      mSession(AddField("lblSession", "Session")),
      mUser(AddField("lblUser", "User")),
      mConnection(AddField("lblOnline", "Connection")) {}

void StatusFields::Show(const HostState& state) {
  ShowText(QString::fromStdString(state.message));
  mLink->setText(QString::fromStdString(state.link));
  mSession->setText("Session " + QString::fromStdString(state.session));
  mUser->setText(state.user.empty() ? "Nobody logged in" : QString::fromStdString(state.user));
  mConnection->setText(QString::fromStdString(ConnectionText(state)));
}

}  // namespace kv
