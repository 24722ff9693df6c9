#include "KvCmDrv1/ui/PortField.h"

#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"

namespace kv {
namespace {

// What is known of a port that is not among those of this computer. Pseudo terminals and links to ports are not.
std::string UnlistedText(const std::string& port) {
  return QFileInfo::exists(QString::fromStdString(port)) ? "there, but not in the list of ports" : "not present";
}

QString Described(const std::string& port, const std::string& description) {
  return QString::fromStdString(description.empty() ? port : port + " - " + description);
}

bool IsCalled(const SerialPortInfo& port, const std::string& text) {
  return !text.empty() && (text == port.path || text == port.name || text == port.stablePath);
}

}  // namespace

PortField::PortField(PortLister listPorts, QWidget* parent) : QWidget(parent), mListPorts(std::move(listPorts)) {
  mCombo = new QComboBox(this);
  mCombo->setObjectName("cboPort");
  mCombo->setAccessibleName("Port");
  mCombo->setToolTip("The serial port of this computer; any other name can be entered (Alt+P)");
  mCombo->setEditable(true);
  mCombo->setInsertPolicy(QComboBox::NoInsert);
  mCombo->setCompleter(nullptr);
  auto* refresh = new QToolButton(this);
  refresh->setObjectName("cmdRefresh");
  refresh->setAccessibleName("Refresh the list of ports");
  refresh->setIcon(IconOf("refresh"));
  refresh->setShortcut(Qt::Key_F5);
  Describe(*refresh, "Looks for the ports of this computer again", "F5");
  mInfo = new QLabel(this);
  mInfo->setObjectName("lblPortInfo");
  mInfo->setTextFormat(Qt::PlainText);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins({});
  grid->addWidget(mCombo, 0, 0);
  grid->addWidget(refresh, 0, 1);
  grid->addWidget(mInfo, 1, 0, 1, 2);
  grid->setColumnStretch(0, 1);
  setFocusProxy(mCombo);
  setFocusPolicy(mCombo->focusPolicy());  // or the key of the label would not reach it
  connect(mCombo, &QComboBox::activated, this, [this](int index) { Choose(index); });
  connect(mCombo, &QComboBox::editTextChanged, this, [this] {
    ShowInfo();
    if (onChange) onChange();
  });
  connect(refresh, &QToolButton::clicked, this, [this] { Refresh(); });
}

void PortField::SetText(const std::string& port) {
  mCombo->setEditText(QString::fromStdString(port));
  Refresh();
}

std::string PortField::Text() const {
  return mCombo->currentText().toStdString();
}

void PortField::Refresh() {
  const std::string chosen = Text();
  const QSignalBlocker quiet(mCombo);
  mPorts = mListPorts();
  mCombo->clear();
  for (const SerialPortInfo& port : mPorts) {
    mCombo->addItem(Described(port.path, port.description), QString::fromStdString(port.path));
    mCombo->setItemData(mCombo->count() - 1, QString::fromStdString(port.stablePath), Qt::ToolTipRole);
  }
  const bool isThere = std::ranges::any_of(mPorts, [&](const auto& port) { return IsCalled(port, chosen); });
  if (!isThere && !chosen.empty())
    mCombo->addItem(Described(chosen, UnlistedText(chosen)), QString::fromStdString(chosen));
  mCombo->setEditText(QString::fromStdString(chosen));
  ShowInfo();
}

// The line shows the port alone, without the description that stands in the list.
void PortField::Choose(int index) {
  mCombo->setEditText(mCombo->itemData(index).toString());
}

void PortField::ShowInfo() {
  const std::string chosen = Text();
  const auto port = std::ranges::find_if(mPorts, [&](const auto& each) { return IsCalled(each, chosen); });
  const bool isMissing = port == mPorts.end() && !chosen.empty();
  mInfo->setText(isMissing              ? QString::fromStdString(UnlistedText(chosen))
                 : port == mPorts.end() ? QString("choose one of this computer's ports")
                                        : QString::fromStdString(port->description));
}

}  // namespace kv
