#include "KvCmDrv1/ui/frmComParams.h"

#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "KvCmDrv1/LinkText.h"
#include "base/AnsiText.h"
#include "desktop/ui/BusyState.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/TextLabel.h"
#include "link/OsVersion.h"

namespace kv {
namespace {

struct TransportName {
  Transport transport;
  const char* name;
};
constexpr auto kTransports = std::to_array<TransportName>({
    {Transport::Simulated, "Simulated controller"},
    {Transport::Serial, "Serial line"},
    {Transport::Tcp, "Ethernet, to the controller"},
    {Transport::Listen, "Ethernet, the controller dials in"},
    {Transport::Modem, "Modem"},
});

QString ResultText(const std::expected<LinkTrial, LinkError>& result) {
  if (!result) return QString::fromStdString(result.error().Text());
  const auto milliseconds = static_cast<double>(result->roundTrip.count()) / 1000.0;
  const QString time = milliseconds < 0.1 ? "below 0.1" : QString::number(milliseconds, 'f', 1);
  const QString serial = result->serialNumber ? QString(", serial number %1").arg(*result->serialNumber) : QString();
  return QString("Connected to %1, O/S %2, build %3%4.\nRound trip %5 ms.")
      .arg(QString::fromStdString(AnsiToUtf8(result->version.model)),
           QString::fromStdString(OsVersionText(result->version)), QString::fromStdString(OsBuildText(result->version)),
           serial, time);
}

}  // namespace

frmComParams::frmComParams(const LinkSettings& current, const std::string& caller, const LinkChoices& choices,
                           Parts parts, QWidget* parent)
    : LinkDialog(current, caller, choices, parent), mParts(std::move(parts)) {
  setObjectName("frmComParams");
  setWindowTitle("Communication settings");
  setWindowIcon(IconOf("link"));
  AddTransports(current.transport);
  AddCommands();
  Fields().SetInput(InputOf(current));
  Fields().onChange = [this] { Check(); };
  connect(mTransport, &QComboBox::currentIndexChanged, this, [this] { ChooseTransport(); });
  ChooseTransport();
  mTransport->setFocus();
}

void frmComParams::AddTransports(Transport current) {
  mTransport = new QComboBox(this);
  mTransport->setObjectName("cboTransport");
  mTransport->setAccessibleName("Kind of link");
  mTransport->setToolTip("How this computer reaches the controller (Alt+K)");
  for (const TransportName& each : kTransports) {
    mTransport->addItem(each.name, static_cast<int>(each.transport));
    if (each.transport == current) mTransport->setCurrentIndex(mTransport->count() - 1);
  }
  Fields().InsertAbove("&Kind of link:", mTransport);
}

void frmComParams::AddCommands() {
  mTest = new QPushButton(IconOf("test"), "&Test connection", this);
  mTest->setObjectName("cmdTest");
  mTest->setAutoDefault(false);
  Describe(*mTest, "Opens the link with these settings, without keeping them, and asks who is there", "Alt+T");
  connect(mTest, &QPushButton::clicked, this, [this] { Test(); });
  auto* trace = new QPushButton(IconOf("trace"), "Tr&ace...", this);
  trace->setObjectName("cmdTrace");
  trace->setAutoDefault(false);
  Describe(*trace, "Shows every frame that passes on the link", "Alt+A");
  connect(trace, &QPushButton::clicked, this, [this] { mParts.showTrace(); });
  AddButton(mTest);
  AddButton(trace);
  BeginTabsWith(mTransport);
  mResult = MakeTextLabel("lblResult", "Result of the test", this);
  Below().addWidget(mResult);
}

void frmComParams::ChooseTransport() {
  const auto transport = static_cast<Transport>(mTransport->currentData().toInt());
  Fields().SetTransport(transport);
  Fields().ShowOnly([transport](LinkField field) { return UsesField(transport, field); });
  Check();
}

void frmComParams::Check() {
  LinkDialog::Check();
  const auto& faults = Checked().faults;
  Allow(*mTest, faults.empty() ? "" : QString::fromStdString(faults.front().text));
  mResult->clear();  // it was about other settings
}

void frmComParams::Test() {
  mResult->clear();
  const LinkSettings tried = Settings();
  BusyState busy(mParts.pacer, *this, "Asking who is there on " + QString::fromStdString(DescribeLink(tried)) + "...");
  mResult->setText(ResultText(mParts.test(tried)));
}

}  // namespace kv
