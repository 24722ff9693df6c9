#pragma once

#include <QDialog>

#include "host/shared/SharedState.h"

class QLineEdit;

namespace kv {

// The log-in window: asks for a user name and a password, and makes them those of the tools.
class frmLogIn final : public QDialog {
 public:
  frmLogIn(SharedState& shared, QWidget* parent);
  ~frmLogIn() override;

  // Whether the window was left without OK.
  bool Cancelled = true;

  // Shows the window until it is left, and applies what was entered; cancelled, everything stays as it is.
  void SetUserNameAndPassword();
  // How a tool's window is shown.
  int exec() override;

 private:
  void BuildFields();
  void ArrangeControls();

  SharedState& mShared;
  QLineEdit* mUserName = nullptr;
  QLineEdit* mPassword = nullptr;
};

}  // namespace kv
