#include "dataview/ui/ToolBands.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/Icons.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kGoToCharacters = 25;

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

ToolBands::ToolBands(QWidget& window, OnTool onTool) : QObject(&window), mWindow(window), mOnTool(std::move(onTool)) {
  setObjectName("abDataTypes");
  for (const ViewMenu& menu : ViewMenus()) {
    for (const ViewCommand& each : menu.tools) {
      if (!each.id.empty()) MakeAction(each);
    }
  }
  BuildMenuBand();
  mRegionBand = MakeBand("BandRegions", "ToolRegions", "Reg&ions", RegionBandTools());
  mOperandBand = MakeBand("BandOperands", "ToolOperands", "Operan&ds", OperandBandTools());
  AddGoTo(*static_cast<QHBoxLayout*>(mOperandBand->layout()));
  mPopup = MakePopup("popMenu", PopupTools());
  mRegionPopup = MakePopup("popRegions", RegionPopupTools());
}

void ToolBands::MakeAction(const ViewCommand& each) {
  auto* action = new QAction(IconOf(each.icon), Text(each.text), &mWindow);
  action->setObjectName(Text(each.id));
  action->setIconText(Text(each.button));
  action->setCheckable(each.id == command::kOnLine);
  if (!each.shortcut.empty()) action->setShortcut(QKeySequence(Text(each.shortcut), QKeySequence::PortableText));
  Describe(*action, Text(each.tip));
  mWindow.addAction(action);
  connect(action, &QAction::triggered, this, [this, id = each.id] { mOnTool(id); });
  mActions[each.id] = action;
}

void ToolBands::BuildMenuBand() {
  mMenuBand = new QWidget(&mWindow);
  mMenuBand->setObjectName("MainMenu");
  auto* menus = new QMenuBar(mMenuBand);
  menus->setNativeMenuBar(false);
  for (const ViewMenu& each : ViewMenus()) {
    QMenu* menu = menus->addMenu(Text(each.title));
    menu->setToolTipsVisible(true);
    for (const ViewCommand& entry : each.tools) {
      if (entry.id.empty()) {
        menu->addSeparator();
      } else {
        menu->addAction(&Action(entry.id));
      }
    }
  }
  auto* onLine = new QToolButton(mMenuBand);
  onLine->setObjectName("cmdOnLine");
  onLine->setDefaultAction(&Action(command::kOnLine));
  onLine->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  onLine->setFocusPolicy(Qt::TabFocus);
  auto* band = new QHBoxLayout(mMenuBand);
  band->setContentsMargins({});
  mController = new ElidedLabel(mMenuBand);
  mController->setObjectName("lblController");
  mController->setAccessibleName("Model and link of the operands");
  band->addWidget(menus);
  band->addWidget(mController, 1);
  band->addWidget(onLine);
}

QWidget* ToolBands::MakeBand(const char* name, const char* tools, const QString& heading,
                             std::span<const std::string_view> ids) {
  auto* widget = new QWidget(&mWindow);
  widget->setObjectName(name);
  auto* label = new QLabel(heading, widget);
  QFont bold = label->font();
  bold.setBold(true);
  label->setFont(bold);
  auto* bar = new QToolBar(widget);
  bar->setObjectName(tools);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->setIconSize({18, 18});
  for (const std::string_view id : ids) {
    if (id.empty()) {
      bar->addSeparator();
    } else {
      bar->addAction(&Action(id));
    }
  }
  auto* band = new QHBoxLayout(widget);
  band->setContentsMargins({});
  band->addWidget(label);
  band->addWidget(bar, 1);
  return widget;
}

void ToolBands::AddGoTo(QHBoxLayout& band) {
  mGoTo = new QLineEdit(mOperandBand);
  mGoTo->setObjectName("txtGoTo");
  mGoTo->setAccessibleName("Go to operand");
  mGoTo->setPlaceholderText("Go to, for example MI 100");
  mGoTo->setToolTip("A type and an address, or either; Enter moves the cursor there (Ctrl+G)");
  mGoTo->setFixedWidth(kGoToCharacters * mGoTo->fontMetrics().averageCharWidth() + 2 * mGoTo->fontMetrics().height());
  band.addWidget(mGoTo);
}

QMenu* ToolBands::MakePopup(const char* name, std::span<const std::string_view> ids) {
  auto* popup = new QMenu(&mWindow);
  popup->setObjectName(name);
  popup->setToolTipsVisible(true);
  for (const std::string_view id : ids) {
    if (id.empty()) {
      popup->addSeparator();
    } else {
      popup->addAction(&Action(id));
    }
  }
  return popup;
}

void ToolBands::ShowController(const QString& text) {
  mController->SetFullText(text);
}

void ToolBands::Show(const WhyNot& whyNot, bool isOnline, const QString& undo, const QString& redo) {
  for (const auto& [id, action] : mActions) Allow(*action, whyNot(id));
  Action(command::kOnLine).setChecked(isOnline);
  ShowHistory(command::kUndo, undo, "&Undo");
  ShowHistory(command::kRedo, redo, "&Redo");
}

// The menu names the change; the band keeps its short text.
void ToolBands::ShowHistory(std::string_view id, const QString& text, const char* otherwise) {
  QAction& action = Action(id);
  action.setText(text.isEmpty() ? QString(otherwise) : "&" + QString(text).replace("&", "&&"));
}

}  // namespace kv::mdlDataTypesView
