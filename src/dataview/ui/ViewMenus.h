#pragma once

#include <span>
#include <string_view>

namespace kv::mdlDataTypesView {

// One command of the operand data view: a tool of the engine, by its id, or one of the window's own, which begin with
// "VIEW_".
struct ViewCommand {
  std::string_view id;
  std::string_view text;      // with "&" before the mnemonic
  std::string_view shortcut;  // "Ctrl+O"; empty: none
  std::string_view tip;       // what it does
  std::string_view icon;
  std::string_view button;  // its text in a band; empty: it is in the menus only
};

// A menu: its title with a mnemonic, and its tools; one without an id separates.
struct ViewMenu {
  std::string_view title;
  std::span<const ViewCommand> tools;
};
[[nodiscard]] std::span<const ViewMenu> ViewMenus();

// The ids of the tools in a band, in their order; an empty one separates.
[[nodiscard]] std::span<const std::string_view> RegionBandTools();
[[nodiscard]] std::span<const std::string_view> OperandBandTools();
// Those of the popup menu of the operand grid.
[[nodiscard]] std::span<const std::string_view> PopupTools();
// Those of the popup menu of the regions table.
[[nodiscard]] std::span<const std::string_view> RegionPopupTools();

namespace command {
inline constexpr std::string_view kOnLine = "ID_OnLine";
inline constexpr std::string_view kHelp = "ID_Help";
inline constexpr std::string_view kUndo = "ID_Undo";
inline constexpr std::string_view kRedo = "ID_Redo";
inline constexpr std::string_view kAddRegion = "ID_AddRegion";
inline constexpr std::string_view kRemoveRegion = "ID_RemoveRegion";
inline constexpr std::string_view kCopy = "ID_Copy";
inline constexpr std::string_view kCut = "ID_Cut";
inline constexpr std::string_view kPaste = "ID_Paste";
inline constexpr std::string_view kClear = "ID_Clear";
inline constexpr std::string_view kGoTo = "VIEW_GoTo";
inline constexpr std::string_view kHideRows = "VIEW_HideRows";
inline constexpr std::string_view kShowRows = "VIEW_ShowRows";
inline constexpr std::string_view kWider = "VIEW_Wider";
inline constexpr std::string_view kNarrower = "VIEW_Narrower";
inline constexpr std::string_view kClose = "VIEW_Close";
}  // namespace command

}  // namespace kv::mdlDataTypesView
