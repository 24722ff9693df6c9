#pragma once

#include <QStatusBar>

#include "KvTele2/HostState.h"

class QLabel;

namespace kv {

class ElidedLabel;

// The status bar: the last message, and on the right the link, the session, the user, and whether a controller is on
// line.
class StatusFields final : public QStatusBar {
 public:
  explicit StatusFields(QWidget* parent);

  void Show(const HostState& state);

 private:
  [[nodiscard]] QLabel* AddField(const char* name, const char* what);

  ElidedLabel* mMessage;
  QLabel* mLink;
  QLabel* mSession;
  QLabel* mUser;
  QLabel* mConnection;
};

}  // namespace kv
