#include "KvCmDrv1/ui/frmModem.h"

#include "desktop/ui/Icons.h"

namespace kv {
namespace {

constexpr bool IsOfTheModem(LinkField field) {
  using enum LinkField;
  return field == SerialPort || field == BaudRate || field == Framing || field == ModemNumber || field == ModemPulse ||
         field == DialTimeOut || field == Redials || field == ModemInit;
}

}  // namespace

frmModem::frmModem(const LinkSettings& current, const std::string& caller, const LinkChoices& choices, QWidget* parent)
    : LinkDialog(current, caller, choices, parent), mTransport(current.transport) {
  setObjectName("frmModem");
  setWindowTitle("Modem settings");
  setWindowIcon(IconOf("modem"));
  Fields().ShowOnly(IsOfTheModem);
  Fields().SetInput(InputOf(current));
  Fields().SetTransport(Transport::Modem);  // so that its fields are checked
  Fields().onChange = [this] { Check(); };
  Check();
  Fields().GiveFocusTo(
      LinkField::SerialPort);  // or Cancel would have it while there is no number, and take the Enter key
}

LinkSettings frmModem::Settings() const {
  LinkSettings settings = LinkDialog::Settings();
  settings.transport = mTransport;
  return settings;
}

}  // namespace kv
