#pragma once

#include "KvTele2/HostState.h"
#include "desktop/ui/MessageBar.h"

namespace kv {

// The status bar: the last message, and on the right the link, the session, the user while somebody is logged in,
// and whether a controller is on line.
class StatusFields final : public MessageBar {
 public:
  explicit StatusFields(QWidget* parent);

  void Show(const HostState& state);
  // Link and session stand in the heading, too: where there is no room they are left out here.
  void ShowPlace(bool isShown);

 private:
  void ShowUser(const QString& name);

  QLabel* mLink;
  QLabel* mSession;
  QLabel* mUser;
  QLabel* mConnection;
};

}  // namespace kv
