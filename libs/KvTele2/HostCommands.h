#pragma once

#include <span>
#include <string_view>

namespace kv {

// One command of the main window: a tool's id, or one of the host's own, which begin with "HOST_".
struct HostCommand {
  std::string_view id;
  std::string_view text;      // with "&" before the mnemonic
  std::string_view shortcut;  // "Ctrl+O"; empty: none
  std::string_view tip;       // what it does, for tooltip and status bar
  std::string_view icon;      // the name of its picture among the icons of the windows
  std::string_view button;    // its text in the tool bar; empty: it is not there
};

// One menu: its title with a mnemonic, and its commands; a command without an id separates.
struct HostMenu {
  std::string_view title;
  std::span<const HostCommand> commands;
};

[[nodiscard]] std::span<const HostMenu> HostMenus();

namespace command {
// Places of the menus that the window fills itself.
inline constexpr std::string_view kModel = "ID_OPLC_Model";           // one entry a model
inline constexpr std::string_view kRecentPages = "HOST_RecentPages";  // one entry a file
inline constexpr std::string_view kRecentCaches = "HOST_RecentCaches";
inline constexpr std::string_view kTheme = "HOST_Theme";  // one entry a theme

inline constexpr std::string_view kOnLine = "ID_OnLine";
inline constexpr std::string_view kComParams = "ID_ComParams";
inline constexpr std::string_view kExit = "ID_Exit";
inline constexpr std::string_view kEscape = "Escape";  // in no menu: the Escape key
inline constexpr std::string_view kOperandView = "ID_DataTypes";
inline constexpr std::string_view kOpenCache = "ID_ImportFontsAndImages";
inline constexpr std::string_view kLogOff = "ID_LogOff";
inline constexpr std::string_view kOffLine = "HOST_OffLine";
inline constexpr std::string_view kTakeModel = "HOST_TakeModel";
inline constexpr std::string_view kSimulate = "HOST_Simulate";
// Of the start page, in no menu: On Line with the session named, and a new one.
inline constexpr std::string_view kStartSession = "HOST_StartSession";
inline constexpr std::string_view kNewSession = "HOST_NewSession";
// Of the panel. The scale has an argument (PanelScale), one entry each.
inline constexpr std::string_view kOperate = "HOST_Operate";
inline constexpr std::string_view kViewOnly = "HOST_ViewOnly";
inline constexpr std::string_view kScale = "HOST_Scale";
inline constexpr std::string_view kFullScreen = "HOST_FullScreen";
inline constexpr std::string_view kCopyPicture = "HOST_CopyPicture";
inline constexpr std::string_view kSavePicture = "HOST_SavePicture";
inline constexpr std::string_view kCopyTexts = "HOST_CopyTexts";
inline constexpr std::string_view kFindText = "HOST_FindText";
inline constexpr std::string_view kTrace = "HOST_Trace";
inline constexpr std::string_view kSavePages = "HOST_SavePages";
inline constexpr std::string_view kClosePages = "HOST_ClosePages";
inline constexpr std::string_view kCopyLog = "HOST_CopyLog";
inline constexpr std::string_view kClearLog = "HOST_ClearLog";
}  // namespace command

}  // namespace kv
