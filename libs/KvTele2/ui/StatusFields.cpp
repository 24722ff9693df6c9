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
  ShowUser(QString::fromStdString(state.user));
  mConnection->setText(QString::fromStdString(ConnectionText(state)));
}

void StatusFields::ShowPlace(bool isShown) {
  for (QLabel* field : {mLink, mSession}) field->setVisible(isShown);
}

// A long name must not widen the window.
void StatusFields::ShowUser(const QString& name) {
  constexpr int kMostCharacters = 24;
  mUser->setText(fontMetrics().elidedText(name, Qt::ElideRight, kMostCharacters * fontMetrics().averageCharWidth()));
  mUser->setToolTip("Logged in: " + name);
  mUser->setVisible(!name.isEmpty());
}

}  // namespace kv
