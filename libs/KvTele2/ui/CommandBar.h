#pragma once

#include <QMainWindow>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/HostCommands.h"
#include "KvTele2/HostState.h"

class QAction;
class QComboBox;
class QMenu;
class QToolBar;

namespace kv {

// The menus and the tool bar of the main window, made from the table of commands.
class CommandBar {
 public:
  using OnCommand = std::function<void(std::string_view id, const std::string& argument)>;
  using WhyDisabled = std::function<std::string(std::string_view id)>;

  CommandBar(QMainWindow& window, OnCommand onCommand);

  void Show(const HostState& state, const WhyDisabled& whyDisabled);
  // The tool bar shows its texts where the window is wide enough for them.
  void FitInto(int width);
  void ShowTheme(const QString& name);
  void ShowScale(const QString& name);
  [[nodiscard]] QWidget* ToolBar() const;
  [[nodiscard]] QAction* Action(std::string_view id) const { return mActions.at(id); }

 private:
  void BuildMenus();
  void AddCommand(QMenu& menu, const HostCommand& command);
  [[nodiscard]] QAction* MakeAction(QMenu& menu, const HostCommand& command);
  void FillModels(QMenu& menu);
  void AddModels(QMenu& menu, bool isAurex);
  void FillThemes(QMenu& menu);
  void FillScales(QMenu& menu);
  void BuildToolBar();
  void BuildModelBox();
  void ShowModel(const std::string& model, const std::string& whyNot);
  void ShowRecent(std::string_view id, const std::vector<std::string>& files);

  QMainWindow& mWindow;
  OnCommand mOnCommand;
  std::map<std::string_view, QAction*> mActions;  // by id
  std::map<std::string_view, QAction*> mModels;   // by model
  std::vector<QAction*> mThemes;
  std::vector<QAction*> mScales;
  struct Recent {
    QMenu* menu = nullptr;
    std::vector<std::string> files;
  };
  std::map<std::string_view, Recent> mRecent;  // by id
  QToolBar* mToolBar = nullptr;
  int mWidthWithTexts = 0;  // of the tool bar
  QComboBox* mModelBox = nullptr;
};

}  // namespace kv
