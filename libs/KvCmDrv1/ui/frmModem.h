#pragma once

#include "KvCmDrv1/ui/LinkDialog.h"

namespace kv {

// The modem: the port that it is on, the number that it dials, and how.
class frmModem final : public LinkDialog {
 public:
  frmModem(const LinkSettings& current, const std::string& caller, const LinkChoices& choices, QWidget* parent);

  [[nodiscard]] LinkSettings Settings() const override;

 private:
  Transport mTransport;  // of the session: this dialog does not change it
};

}  // namespace kv
