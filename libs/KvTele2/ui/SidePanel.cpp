#include "KvTele2/ui/SidePanel.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <array>

#include "KvTele2/ui/SignMark.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"

namespace kv {
namespace {

template <typename Facts>
struct Row {
  const char* name;
  const char* label;
  bool isNumber;
  std::string Facts::* text;
};

// clang-format off
constexpr auto kControllerRows = std::to_array<Row<ControllerFacts>>({
    {"lblModel",   "Model",         false, &ControllerFacts::model},
    {"lblSerial",  "Serial number", true,  &ControllerFacts::serialNumber},
    {"lblProject", "Project",       false, &ControllerFacts::project},
    {"lblOs",      "O/S version",   true,  &ControllerFacts::os},
    {"lblBuild",   "O/S build",     true,  &ControllerFacts::build},
    {"lblHardware","Hardware code", true,  &ControllerFacts::hardwareCode},
    {"lblUnit",    "Unit id",       true,  &ControllerFacts::unit},
});
constexpr auto kLinkRows = std::to_array<Row<LinkFacts>>({
    {"lblRoundTrip", "Round trip",       true, &LinkFacts::roundTrip},
    {"lblErrors",    "Failed exchanges", true, &LinkFacts::errors},
    {"lblRepeats",   "Repeats",          true, &LinkFacts::repeats},
    {"lblExchanges", "Exchanges",        true, &LinkFacts::exchanges},
});
// clang-format on

constexpr int kWidth = 45;  // in characters; the longest name of a project fits, a longer model breaks at its "/"
constexpr const char* kUnknown = "-";

template <typename Facts, std::size_t Count>
void ShowRows(const QWidget& box, const std::array<Row<Facts>, Count>& rows, const std::optional<Facts>& facts) {
  for (const Row<Facts>& row : rows) {
    const std::string text = facts ? (*facts).*row.text : std::string();
    box.findChild<QLabel*>(row.name)->setText(text.empty() ? kUnknown : QString::fromStdString(text));
  }
}

}  // namespace

SidePanel::SidePanel(QWidget* parent) : QWidget(parent) {
  setObjectName("sidController");
  setFixedWidth(kWidth * fontMetrics().averageCharWidth());
  auto* boxes = new QVBoxLayout(this);
  boxes->addWidget(BuildController());
  boxes->addWidget(BuildLink());
  boxes->addWidget(BuildFile());
  boxes->addStretch(1);
}

QGroupBox* SidePanel::BuildController() {
  mController = new QGroupBox("Controller", this);
  auto* rows = new QFormLayout(mController);
  mMachineMark = AddSign(*rows, "lblState", "State");
  for (const auto& row : kControllerRows) {
    QLabel* value = AddRow(*rows, row.name, row.label);
    value->setWordWrap(!row.isNumber);
    if (row.isNumber) ShowAsNumber(*value);
  }
  return mController;
}

QGroupBox* SidePanel::BuildLink() {
  mLink = new QGroupBox("Link", this);
  auto* rows = new QFormLayout(mLink);
  mLinkMark = AddSign(*rows, "lblLinkState", "Link");
  for (const auto& row : kLinkRows) ShowAsNumber(*AddRow(*rows, row.name, row.label));
  return mLink;
}

QGroupBox* SidePanel::BuildFile() {
  auto* box = new QGroupBox("Telepanel file", this);
  mPages = new ElidedLabel(box);
  mPages->setObjectName("lblPages");
  mPages->setAccessibleName("Telepanel file");
  (new QVBoxLayout(box))->addWidget(mPages);
  return box;
}

SignMark* SidePanel::AddSign(QFormLayout& rows, const char* name, const char* label) {
  auto* mark = new SignMark(this);
  auto* word = new QLabel(kUnknown, this);
  word->setObjectName(name);
  word->setAccessibleName(label);
  word->setTextFormat(Qt::PlainText);
  QFont bold = word->font();
  bold.setBold(true);
  word->setFont(bold);
  auto* both = new QHBoxLayout;
  both->addWidget(mark);
  both->addWidget(word, 1);
  rows.addRow(label, both);
  return mark;
}

QLabel* SidePanel::AddRow(QFormLayout& rows, const char* name, const char* label) {
  auto* value = new QLabel(kUnknown, this);
  value->setObjectName(name);
  value->setAccessibleName(label);
  value->setTextFormat(Qt::PlainText);
  value->setTextInteractionFlags(Qt::TextSelectableByMouse);
  rows.setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  rows.addRow(label, value);
  return value;
}

void SidePanel::Show(const HostState& state) {
  const bool isRefused = state.connection == ConnectionState::Offline && state.controller;
  mController->setTitle(isRefused ? "Controller that was refused" : "Controller");
  const Sign machine = MachineSign(state);
  mMachineMark->Show(machine);
  mController->findChild<QLabel*>("lblState")->setText(QString::fromStdString(machine.word));
  ShowRows(*mController, kControllerRows, state.controller);
  const Sign link = LinkSign(state);
  mLinkMark->Show(link);
  mLink->findChild<QLabel*>("lblLinkState")->setText(QString::fromStdString(link.word));
  ShowRows(*mLink, kLinkRows, state.quality);
  mPages->SetFullText(QString::fromStdString(PagesText(state)));
}

}  // namespace kv
