#include "KvTele2/ui/ControllerPage.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <array>

#include "desktop/ui/Commands.h"
#include "desktop/ui/HelpLink.h"
#include "desktop/ui/Icons.h"

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
    {"lblState",   "State",         false, &ControllerFacts::state},
    {"lblProject", "Project",       false, &ControllerFacts::project},
    {"lblHardware","Hardware code", true,  &ControllerFacts::hardwareCode},
    {"lblOs",      "O/S version",   true,  &ControllerFacts::os},
    {"lblBuild",   "O/S build",     true,  &ControllerFacts::build},
    {"lblUnit",    "Unit id",       true,  &ControllerFacts::unit},
    {"lblSerial",  "Serial number", true,  &ControllerFacts::serialNumber},
});
constexpr auto kLinkRows = std::to_array<Row<LinkFacts>>({
    {"lblRoundTrip", "Round trip",       true, &LinkFacts::roundTrip},
    {"lblExchanges", "Exchanges",        true, &LinkFacts::exchanges},
    {"lblRepeats",   "Repeats",          true, &LinkFacts::repeats},
    {"lblErrors",    "Failed exchanges", true, &LinkFacts::errors},
});
// clang-format on

constexpr int kPictureSize = 32;
// Of the values, in characters: the longest model text fits, so nothing moves when values come and go.
constexpr int kTextWidth = 30;
constexpr int kNumberWidth = 16;
constexpr const char* kUnknown = "-";

template <typename Facts, std::size_t Count>
void ShowRows(const QWidget& box, const std::array<Row<Facts>, Count>& rows, const std::optional<Facts>& facts) {
  for (const Row<Facts>& row : rows) {
    const std::string text = facts ? (*facts).*row.text : std::string();
    box.findChild<QLabel*>(row.name)->setText(text.empty() ? kUnknown : QString::fromStdString(text));
  }
}

QIcon IconFor(const HostState& state) {
  if (!state.trouble.empty() || state.isSilent) return IconOf("warning");
  return state.connection == ConnectionState::Online ? IconOf("online") : IconOf("offline");
}

}  // namespace

ControllerPage::ControllerPage(QWidget* parent) : QWidget(parent) {
  setObjectName("pageController");
  new QVBoxLayout(this);
  BuildHeading();
  BuildFacts();
}

void ControllerPage::BuildHeading() {
  mPicture = new QLabel(this);
  mConnection = new QLabel(this);
  mConnection->setObjectName("lblConnection");
  mConnection->setTextFormat(Qt::PlainText);
  QFont large = mConnection->font();
  large.setPointSizeF(1.6 * large.pointSizeF());
  mConnection->setFont(large);
  mTrouble = new QLabel(this);
  mTrouble->setObjectName("lblTrouble");
  mTrouble->setAccessibleName("What is wrong with the connection");
  mTrouble->setTextFormat(Qt::PlainText);
  mTrouble->setWordWrap(true);
  mTrouble->setTextInteractionFlags(Qt::TextSelectableByMouse);
  mHelp = new HelpLink(this);

  auto* heading = new QHBoxLayout;
  heading->addWidget(mPicture);
  heading->addWidget(mConnection, 1);
  auto* page = static_cast<QVBoxLayout*>(layout());
  page->addLayout(heading);
  page->addWidget(mTrouble);
  page->addWidget(mHelp);
}

void ControllerPage::BuildFacts() {
  mController = new QGroupBox("Controller", this);
  auto* controllerRows = new QFormLayout(mController);
  for (const auto& row : kControllerRows) {
    QLabel* value = AddRow(*controllerRows, row.name, row.label);
    value->setMinimumWidth(kTextWidth * fontMetrics().averageCharWidth());
    if (row.isNumber) ShowAsNumber(*value);
  }
  mLink = new QGroupBox("Link", this);
  auto* linkRows = new QFormLayout(mLink);
  for (const auto& row : kLinkRows) {
    QLabel* value = AddRow(*linkRows, row.name, row.label);
    value->setMinimumWidth(kNumberWidth * fontMetrics().averageCharWidth());
    ShowAsNumber(*value);
  }

  auto* boxes = new QHBoxLayout;
  boxes->addWidget(mController);
  boxes->addWidget(mLink);
  boxes->addStretch(1);
  auto* page = static_cast<QVBoxLayout*>(layout());
  page->addLayout(boxes);
  auto* files = new QFormLayout;
  mPages = AddRow(*files, "lblPages", "Telepanel file");
  page->addLayout(files);
  page->addStretch(1);
}

QLabel* ControllerPage::AddRow(QFormLayout& rows, const char* name, const char* label) {
  auto* value = new QLabel(kUnknown, this);
  value->setObjectName(name);
  value->setAccessibleName(label);
  value->setTextFormat(Qt::PlainText);
  value->setTextInteractionFlags(Qt::TextSelectableByMouse);
  rows.setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  rows.addRow(label, value);
  return value;
}

void ControllerPage::Show(const HostState& state) {
  ShowConnection(state);
  ShowFacts(state);
}

void ControllerPage::ShowConnection(const HostState& state) {
  mPicture->setPixmap(IconFor(state).pixmap(kPictureSize));
  mConnection->setText(QString::fromStdString(ConnectionHeading(state)));
  mTrouble->setText(QString::fromStdString(state.trouble).remove('\r'));
  mTrouble->setVisible(!state.trouble.empty());
  mHelp->Follow(mTrouble->text());
}

void ControllerPage::ShowFacts(const HostState& state) {
  ShowRows(*mController, kControllerRows, state.controller);
  ShowRows(*mLink, kLinkRows, state.quality);
  mPages->setText(QString::fromStdString(PagesText(state)));
}

}  // namespace kv
