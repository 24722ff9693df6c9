#pragma once

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "KvTele2/HostCommands.h"
#include "desktop/ui/Icons.h"

namespace kv {

// clang-format off
inline constexpr auto kCommandPictures = std::to_array<std::pair<std::string_view, Picture>>({
    {"ID_PagesFile",            Picture::Open},
    {command::kRecentPages,     Picture::Pages},
    {command::kSavePages,       Picture::Save},
    {command::kClosePages,      Picture::Delete},
    {"ID_ImportFontsAndImages", Picture::Images},
    {"ID_ImportCacheFromPLC",   Picture::Cache},
    {"ID_Session",              Picture::Session},
    {command::kExit,            Picture::Exit},
    {command::kOnLine,          Picture::Online},
    {command::kOffLine,         Picture::Offline},
    {command::kModel,           Picture::Model},
    {command::kComParams,       Picture::Link},
    {"ID_Modem",                Picture::Modem},
    {command::kTrace,           Picture::Trace},
    {"ID_DataTypes",            Picture::DataTypes},
    {"ID_Downloader",           Picture::Download},
    {"ID_DumpPLC",              Picture::Clone},
    {"ID_PLC_DB",               Picture::Panel},
    {"ID_PID_Srv",              Picture::Pid},
    {"ID_DownloadDesigner",     Picture::Designer},
    {"ID_LogIn",                Picture::LogIn},
    {command::kLogOff,          Picture::LogOff},
    {command::kCopyLog,         Picture::Copy},
    {command::kClearLog,        Picture::Delete},
    {"ID_Help",                 Picture::Help},
    {"ID_About",                Picture::About},
});
// clang-format on

// The picture of a command of the main window.
[[nodiscard]] inline Picture PictureOf(std::string_view id) {
  const auto row = std::ranges::find(kCommandPictures, id, &std::pair<std::string_view, Picture>::first);
  return row == kCommandPictures.end() ? Picture::App : row->second;
}

}  // namespace kv
