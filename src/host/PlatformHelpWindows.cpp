#include <windows.h>

#include <string>

#include "host/PlatformHelp.h"

namespace kv {
namespace {

constexpr UINT kHelpContext = 15;  // HH_HELP_CONTEXT: the topic with a map number
using HtmlHelp = HWND(WINAPI*)(HWND owner, const wchar_t* file, UINT command, DWORD_PTR data);

// The viewer is loaded when it is first needed, and stays: its window lives in it.
HtmlHelp Viewer() {
  static const HMODULE kLibrary = LoadLibraryExW(L"hhctrl.ocx", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (!kLibrary) return nullptr;
  return reinterpret_cast<HtmlHelp>(reinterpret_cast<void*>(GetProcAddress(kLibrary, "HtmlHelpW")));
}

bool IsOnLocalDrive(const std::filesystem::path& file) {
  const std::wstring root = file.root_path().wstring();
  const UINT type = root.starts_with(L"\\\\") ? DRIVE_REMOTE : GetDriveTypeW(root.c_str());
  return type == DRIVE_FIXED || type == DRIVE_REMOVABLE || type == DRIVE_RAMDISK;
}

bool HasMarkOfDownload(const std::filesystem::path& file) {
  return GetFileAttributesW((file.wstring() + L":Zone.Identifier").c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace

bool ShowPlatformHelp(const std::filesystem::path& file, std::int32_t mapNumber) {
  std::error_code missing;
  if (!std::filesystem::exists(file, missing) || !IsOnLocalDrive(file) || HasMarkOfDownload(file)) return false;
  const HtmlHelp show = Viewer();
  return show && show(nullptr, file.c_str(), kHelpContext, static_cast<DWORD_PTR>(mapNumber)) != nullptr;
}

}  // namespace kv
