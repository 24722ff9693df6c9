#include "KvCmDrv1/ui/LinkFields.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>

#include "KvCmDrv1/LinkText.h"
#include "base/Texts.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"

namespace kv {
namespace {

constexpr int kUsualRates[] = {9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600};  // the usual ones

QString RangeText(NumberRange range) {
  return QString::fromStdString(range.Text());
}

QString FramingText(const SerialFraming& framing) {
  const char* parity = framing.parity == Parity::Even  ? "even parity"
                       : framing.parity == Parity::Odd ? "odd parity"
                                                       : "no parity";
  return QString("%1 - %2 data bits, %3, %4")
      .arg(QString::fromStdString(PrintFraming(framing)))
      .arg(framing.dataBits)
      .arg(parity)
      .arg(QString::fromStdString(Counted(static_cast<std::uint64_t>(framing.stopBits), "stop bit")));
}

// Chooses the item with that data. A value that the list does not have is added: it stays as it is until the user
// chooses another one.
void Choose(QComboBox& combo, const std::string& value) {
  const QString text = QString::fromStdString(value);
  if (combo.findData(text) < 0) combo.addItem(text, text);
  combo.setCurrentIndex(combo.findData(text));
}

}  // namespace

struct LinkFields::TextField {
  LinkField field;
  const char* name;
  const char* label;
  std::string LinkInput::* text;
  QString tip;
  bool isNumber;
};

const std::vector<LinkFields::TextField>& LinkFields::TextFields() {
  using enum LinkField;
  static const std::vector<TextField> fields = {
      {Host, "txtHost", "&Host:", &LinkInput::host, "Name or address of the controller: 192.168.1.20", false},
      {TcpPort, "txtTcpPort", "TCP &port:", &LinkInput::tcpPort, RangeText(kTcpPorts), true},
      {ModemNumber, "txtModemNumber", "&Number:", &LinkInput::modemNumber,
       "What the modem dials: digits, and marks such as * # , W", false},
      {DialTimeOut, "txtDialTimeOut", "Time for diallin&g (s):", &LinkInput::dialTimeOut,
       RangeText(kDialTimeOuts) + " seconds, from the call to the answer", true},
      {Redials, "txtRedials", "Dial again (tim&es):", &LinkInput::redials,
       RangeText(kRedials) +
           ", how often in a row \"kvtele watch\" dials a lost call again, with growing pauses; the windows dial only "
           "when you ask",
       true},
      {ModemInit, "txtModemInit", "&Init text:", &LinkInput::modemInit,
       "Commands for the modem after its reset, such as AT&F; empty for none", false},
      {Unit, "txtUnit", "&Unit id:", &LinkInput::unit, RangeText(kUnitIds), true},
      {SerialNumber, "txtSerialNumber", "Serial num&ber:", &LinkInput::serialNumber,
       "Of the controller that is meant, as the main window shows it; another one is refused before anything is read. "
       "Empty: whoever answers",
       true},
      {TimeOut, "txtTimeOut", "Ti&me-out (ms):", &LinkInput::timeOut,
       RangeText(kTimeOuts) + " milliseconds, the longest wait for a reply", true},
      {Tries, "txtTries", "T&ries:", &LinkInput::tries,
       RangeText(kTries) + ", how often a request is sent before it counts as unanswered", true},
  };
  return fields;
}

LinkFields::LinkFields(const std::vector<std::string>& models, const PortLister& listPorts, QWidget* parent)
    : QWidget(parent), mForm(new QFormLayout(this)) {
  using enum LinkField;
  mForm->setContentsMargins({});
  mForm->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  AddModel(models);
  AddText(Host);
  AddText(TcpPort);
  AddPort(listPorts);
  AddBaudRate();
  AddFraming();
  AddText(ModemNumber);
  AddDialling();
  AddText(DialTimeOut);
  AddText(Redials);
  AddText(ModemInit);
  AddText(Unit);
  AddText(SerialNumber);
  AddText(TimeOut);
  AddText(Tries);
  AddReconnects();
}

void LinkFields::AddText(LinkField field) {
  const TextField& facts = *std::ranges::find(TextFields(), field, &TextField::field);
  auto* edit = new QLineEdit(this);
  edit->setObjectName(facts.name);
  edit->setAccessibleName(QString(facts.label).remove('&').remove(':'));
  edit->setToolTip(facts.tip);
  if (facts.isNumber) ShowAsNumber(*edit);
  if (facts.field == LinkField::SerialNumber) edit->setPlaceholderText("any");
  connect(edit, &QLineEdit::textChanged, this, [this] { Changed(); });
  Add(facts.label,
      {field, edit, edit, [edit, text = facts.text](const LinkInput& from) { edit->setText((from.*text).c_str()); },
       [edit, text = facts.text](LinkInput& to) { to.*text = edit->text().toStdString(); }});
}

void LinkFields::AddModel(const std::vector<std::string>& models) {
  QComboBox* combo = NewCombo("cboModel", "Simulated model", "Which controller is simulated (Alt+L)");
  for (const std::string& model : models) combo->addItem(model.c_str(), QString::fromStdString(model));
  Add("Mode&l:", {LinkField::Model, combo, nullptr, [combo](const LinkInput& from) { Choose(*combo, from.model); },
                  [combo](LinkInput& to) { to.model = combo->currentData().toString().toStdString(); }});
}

void LinkFields::AddPort(const PortLister& listPorts) {
  auto* port = new PortField(listPorts, this);
  port->onChange = [this] { Changed(); };
  Add("&Port:", {LinkField::SerialPort, port, port->Combo().lineEdit(),
                 [port](const LinkInput& from) { port->SetText(from.serialPort); },
                 [port](LinkInput& to) { to.serialPort = port->Text(); }});
}

void LinkFields::AddBaudRate() {
  QComboBox* combo = NewCombo("cboBaudRate", "Speed", "");
  combo->setToolTip(RangeText(kBaudRates) + " bits a second; both ends must agree (Alt+S)");
  combo->setEditable(true);
  combo->setInsertPolicy(QComboBox::NoInsert);
  ShowAsNumber(*combo->lineEdit());
  for (const int rate : kUsualRates) combo->addItem(QString::number(rate));
  Add("&Speed:", {LinkField::BaudRate, combo, combo->lineEdit(),
                  [combo](const LinkInput& from) { combo->setEditText(from.baudRate.c_str()); },
                  [combo](LinkInput& to) { to.baudRate = combo->currentText().toStdString(); }});
}

void LinkFields::AddFraming() {
  QComboBox* combo = NewCombo("cboFraming", "Framing",
                              "How the line frames a byte; both ends must agree. 7 data bits cannot carry downloads "
                              "(Alt+F)");
  for (const int dataBits : {8, 7}) {
    for (const Parity parity : {Parity::None, Parity::Even, Parity::Odd}) {
      for (const int stopBits : {1, 2}) {
        const SerialFraming framing{dataBits, parity, stopBits};
        combo->addItem(FramingText(framing), QString::fromStdString(PrintFraming(framing)));
      }
    }
  }
  Add("&Framing:",
      {LinkField::Framing, combo, nullptr, [combo](const LinkInput& from) { Choose(*combo, from.framing); },
       [combo](LinkInput& to) { to.framing = combo->currentData().toString().toStdString(); }});
}

void LinkFields::AddDialling() {
  QComboBox* combo =
      NewCombo("cboDialling", "Dialling", "How the number is dialled; nearly all lines take tones (Alt+D)");
  combo->addItems({"Tone", "Pulse"});
  Add("&Dialling:", {LinkField::ModemPulse, combo, nullptr,
                     [combo](const LinkInput& from) { combo->setCurrentIndex(from.isPulse ? 1 : 0); },
                     [combo](LinkInput& to) { to.isPulse = combo->currentIndex() == 1; }});
}

void LinkFields::AddReconnects() {
  auto* check = new QCheckBox("Reco&nnect a lost link", this);
  check->setObjectName("chkReconnect");
  check->setToolTip("Opens a link that broke again by itself, to the same controller only (Alt+N)");
  connect(check, &QCheckBox::toggled, this, [this] { Changed(); });
  Add("",
      {LinkField::Reconnects, check, nullptr, [check](const LinkInput& from) { check->setChecked(from.reconnects); },
       [check](LinkInput& to) { to.reconnects = check->isChecked(); }});
}

QComboBox* LinkFields::NewCombo(const char* name, const char* accessibleName, const char* tip) {
  auto* combo = new QComboBox(this);
  combo->setObjectName(name);
  combo->setAccessibleName(accessibleName);
  combo->setToolTip(tip);
  connect(combo, &QComboBox::currentTextChanged, this, [this] { Changed(); });
  return combo;
}

void LinkFields::Add(const char* label, Control control) {
  control.widget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  mForm->addRow(label, control.widget);
  if (control.line) {
    control.mark = control.line->addAction(IconOf("warning"), QLineEdit::TrailingPosition);
    control.mark->setVisible(false);
  }
  mControls.push_back(std::move(control));
}

void LinkFields::InsertAbove(const char* label, QWidget* widget) {
  widget->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  mForm->insertRow(0, label, widget);
}

QWidget* LinkFields::PutBehind(QWidget* control) const {
  for (const Control& each : mControls) {
    QWidget::setTabOrder(control, each.widget);
    control = each.widget;
  }
  return control;
}

void LinkFields::Changed() const {
  if (onChange) onChange();
}

void LinkFields::SetInput(const LinkInput& input) {
  mTransport = input.transport;
  for (const Control& control : mControls) control.show(input);
}

LinkInput LinkFields::Input() const {
  LinkInput input;
  input.transport = mTransport;
  for (const Control& control : mControls) control.read(input);
  return input;
}

void LinkFields::ShowOnly(const std::function<bool(LinkField)>& isShown) {
  for (const Control& control : mControls) mForm->setRowVisible(control.widget, isShown(control.field));
}

void LinkFields::GiveFocusTo(LinkField field) {
  std::ranges::find(mControls, field, &Control::field)->widget->setFocus();
}

void LinkFields::MarkFaults(const std::vector<LinkFault>& faults) {
  for (const Control& control : mControls) {
    if (!control.mark) continue;
    const auto fault = std::ranges::find(faults, control.field, &LinkFault::field);
    control.mark->setVisible(fault != faults.end());
    const QString text = fault == faults.end() ? "" : QString::fromStdString(fault->text);
    control.mark->setToolTip(text);
    control.line->setAccessibleDescription(text);
  }
}

}  // namespace kv
