#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "dataview/ui/ViewMenus.h"

class QAction;
class QHBoxLayout;
class QLineEdit;
class QMenu;
class QWidget;

namespace kv {
class ElidedLabel;
}

namespace kv::mdlDataTypesView {

// The commands of the view and the bands in which they lie: the menus with On Line, and one band over each grid.
class ToolBands final : public QObject {
 public:
  using OnTool = std::function<void(std::string_view id)>;
  using WhyNot = std::function<QString(std::string_view id)>;

  // `window` becomes the owner.
  ToolBands(QWidget& window, OnTool onTool);

  [[nodiscard]] QWidget& MenuBand() const { return *mMenuBand; }
  [[nodiscard]] QWidget& RegionBand() const { return *mRegionBand; }
  [[nodiscard]] QWidget& OperandBand() const { return *mOperandBand; }
  // Where the place to go to is entered.
  [[nodiscard]] QLineEdit& GoToLine() const { return *mGoTo; }
  [[nodiscard]] QMenu& Popup() const { return *mPopup; }
  [[nodiscard]] QMenu& RegionPopup() const { return *mRegionPopup; }
  [[nodiscard]] QAction& Action(std::string_view id) const { return *mActions.at(id); }

  // Names the controller beside the menus.
  void ShowController(const QString& text);
  // Which tools can be used, whether the view is on line, and what undo and redo would do.
  void Show(const WhyNot& whyNot, bool isOnline, const QString& undo, const QString& redo);

 private:
  void MakeAction(const ViewCommand& each);
  void BuildMenuBand();
  QWidget* MakeBand(const char* name, const char* tools, const QString& heading, std::span<const std::string_view> ids);
  void AddGoTo(QHBoxLayout& band);
  [[nodiscard]] QMenu* MakePopup(const char* name, std::span<const std::string_view> ids);
  void ShowHistory(std::string_view id, const QString& text, const char* otherwise);

  QWidget& mWindow;
  OnTool mOnTool;
  std::map<std::string_view, QAction*> mActions;  // by id
  QWidget* mMenuBand = nullptr;
  QWidget* mRegionBand = nullptr;
  QWidget* mOperandBand = nullptr;
  QLineEdit* mGoTo = nullptr;
  QMenu* mPopup = nullptr;
  QMenu* mRegionPopup = nullptr;
  ElidedLabel* mController = nullptr;
};

}  // namespace kv::mdlDataTypesView
