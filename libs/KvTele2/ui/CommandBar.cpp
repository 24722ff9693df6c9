#include "KvTele2/ui/CommandBar.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "KvTele2/ui/PanelScale.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/Theme.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A file's name in a menu, with "&" where it stands in the name.
QString MenuText(const std::string& path) {
  return QString::fromStdString(path).replace("&", "&&");
}

}  // namespace

CommandBar::CommandBar(QMainWindow& window, OnCommand onCommand) : mWindow(window), mOnCommand(std::move(onCommand)) {
  BuildMenus();
  BuildToolBar();
}

void CommandBar::BuildMenus() {
  for (const HostMenu& each : HostMenus()) {
    QMenu* menu = mWindow.menuBar()->addMenu(Text(each.title));
    menu->setToolTipsVisible(true);
    for (const HostCommand& command : each.commands) AddCommand(*menu, command);
  }
}

void CommandBar::AddCommand(QMenu& menu, const HostCommand& command) {
  if (command.id.empty()) {
    menu.addSeparator();
    return;
  }
  QAction* action = MakeAction(menu, command);
  action->setObjectName(Text(command.id));
  action->setIcon(IconOf(command.icon));
  if (!command.button.empty()) action->setIconText(Text(command.button));
  Describe(*action, Text(command.tip));
  mActions[command.id] = action;
}

QAction* CommandBar::MakeAction(QMenu& menu, const HostCommand& command) {
  if (command.id == command::kModel) {
    QMenu* models = menu.addMenu(Text(command.text));
    FillModels(*models);
    return models->menuAction();
  }
  if (command.id == command::kTheme) {
    QMenu* themes = menu.addMenu(Text(command.text));
    FillThemes(*themes);
    return themes->menuAction();
  }
  if (command.id == command::kScale) {
    QMenu* scales = menu.addMenu(Text(command.text));
    FillScales(*scales);
    return scales->menuAction();
  }
  if (command.id == command::kRecentPages || command.id == command::kRecentCaches) {
    QMenu* files = menu.addMenu(Text(command.text));
    mRecent[command.id].menu = files;
    return files->menuAction();
  }
  QAction* action = menu.addAction(Text(command.text));
  if (!command.shortcut.empty()) action->setShortcut(QKeySequence(Text(command.shortcut), QKeySequence::PortableText));
  QObject::connect(action, &QAction::triggered, &mWindow, [this, id = command.id] { mOnCommand(id, ""); });
  return action;
}

void CommandBar::FillModels(QMenu& menu) {
  AddModels(*menu.addMenu("&Aurex Family"), true);
  AddModels(*menu.addMenu("&Compact Family"), false);
}

void CommandBar::AddModels(QMenu& menu, bool isAurex) {
  auto* group = new QActionGroup(&menu);
  // What is checked follows the state; a model that is not in the list leaves nothing checked.
  group->setExclusionPolicy(QActionGroup::ExclusionPolicy::None);
  for (const std::string_view model : SelectableModels()) {
    if (IsAurexModel(model) != isAurex) continue;
    QAction* action = group->addAction(Text(model));
    action->setCheckable(true);
    QObject::connect(action, &QAction::triggered, &mWindow,
                     [this, model] { mOnCommand(command::kModel, std::string(model)); });
    mModels[model] = action;
  }
  menu.addActions(group->actions());
}

void CommandBar::FillThemes(QMenu& menu) {
  for (const Theme theme : kThemes) {
    QAction* action = menu.addAction("&" + NameOf(theme));
    action->setData(NameOf(theme));
    action->setCheckable(true);
    QObject::connect(action, &QAction::triggered, &mWindow,
                     [this, theme] { mOnCommand(command::kTheme, NameOf(theme).toStdString()); });
    mThemes.push_back(action);
  }
}

// Ctrl+0 fits, the others have their multiple.
void CommandBar::FillScales(QMenu& menu) {
  menu.setToolTipsVisible(true);
  for (int multiple = 0; multiple <= PanelScale::kLargest; ++multiple) {
    const QString name = (multiple == 0 ? PanelScale() : PanelScale(multiple)).Name();
    QAction* action = menu.addAction("&" + name);
    action->setData(name);
    action->setCheckable(true);
    action->setShortcut(QKeySequence("Ctrl+" + QString::number(multiple), QKeySequence::PortableText));
    Describe(*action, multiple == 0 ? "As large as there is room" : "Each dot of the controller in whole dots");
    QObject::connect(action, &QAction::triggered, &mWindow,
                     [this, name] { mOnCommand(command::kScale, name.toStdString()); });
    mScales.push_back(action);
    mWindow.addAction(action);  // its keys go on working when the menus are hidden
  }
}

void CommandBar::ShowScale(const QString& name) {
  for (QAction* scale : mScales) scale->setChecked(scale->data().toString() == name);
}

QWidget* CommandBar::ToolBar() const {
  return mToolBar;
}

void CommandBar::ShowTheme(const QString& name) {
  for (QAction* theme : mThemes) theme->setChecked(theme->data().toString() == name);
}

void CommandBar::BuildToolBar() {
  mToolBar = mWindow.addToolBar("Tool Bar");
  mToolBar->setObjectName("toolBar");
  mToolBar->setMovable(false);
  mToolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  mToolBar->setContextMenuPolicy(Qt::PreventContextMenu);  // there is no way back for a bar that was hidden
  for (const HostMenu& menu : HostMenus()) {
    for (const HostCommand& command : menu.commands) {
      if (!command.button.empty()) mToolBar->addAction(mActions[command.id]);
      if (command.id == command::kModel) BuildModelBox();
    }
  }
}

// A command behind the arrow of a bar that is too long is not found; its picture alone is, and has its tooltip.
void CommandBar::FitInto(int width) {
  if (mWidthWithTexts == 0) mWidthWithTexts = mToolBar->sizeHint().width();
  mToolBar->setToolButtonStyle(width < mWidthWithTexts ? Qt::ToolButtonIconOnly : Qt::ToolButtonTextUnderIcon);
}

void CommandBar::BuildModelBox() {
  mModelBox = new QComboBox(mToolBar);
  mModelBox->setObjectName("cboModel");
  mModelBox->setAccessibleName("Model");
  for (const std::string_view model : SelectableModels()) mModelBox->addItem(Text(model));
  mModelBox->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  mModelBox->setMaxVisibleItems(20);
  QObject::connect(mModelBox, &QComboBox::textActivated, &mWindow,
                   [this](const QString& model) { mOnCommand(command::kModel, model.toStdString()); });
  mToolBar->addWidget(mModelBox);
}

void CommandBar::Show(const HostState& state, const WhyDisabled& whyDisabled) {
  for (const auto& [id, action] : mActions) Allow(*action, QString::fromStdString(whyDisabled(id)));
  ShowModel(state.model, whyDisabled(command::kModel));
  ShowRecent(command::kRecentPages, state.recentPages);
  ShowRecent(command::kRecentCaches, state.recentCaches);
}

void CommandBar::ShowModel(const std::string& model, const std::string& whyNot) {
  for (const auto& [name, action] : mModels) action->setChecked(name == model);
  const QString text = QString::fromStdString(model);
  // A text that is not in the list (a variant that a controller reports, or a damaged setting) is shown as it is.
  mModelBox->setCurrentIndex(mModelBox->findText(text));
  mModelBox->setPlaceholderText(text.isEmpty() ? "Choose a model" : text);
  mModelBox->setEnabled(whyNot.empty());
  mModelBox->setToolTip(whyNot.empty() ? "Selects the model of the controller" : QString::fromStdString(whyNot));
}

void CommandBar::ShowRecent(std::string_view id, const std::vector<std::string>& files) {
  Recent& recent = mRecent.at(id);
  if (files == recent.files) return;
  recent.files = files;
  recent.menu->clear();
  for (const std::string& file : files) {
    QAction* action = recent.menu->addAction(MenuText(file));
    QObject::connect(action, &QAction::triggered, &mWindow, [this, id, file] { mOnCommand(id, file); });
  }
}

}  // namespace kv
