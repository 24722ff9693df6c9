// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on
#include <io.h>

#include <cstdio>
#include <cwchar>
#include <memory>

#include "base/PathText.h"
#include "desktop/console/ConsoleProgram.h"

namespace kv {

ConsoleSetup::ConsoleSetup() : mPreviousCodePage(GetConsoleOutputCP()) {
  SetConsoleOutputCP(CP_UTF8);
}

ConsoleSetup::~ConsoleSetup() {
  if (mPreviousCodePage != 0) SetConsoleOutputCP(mPreviousCodePage);
}

// The narrow arguments have lost every character that the code page lacks, so the command line is read again.
std::vector<std::string> Utf8Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; wide && i < count; ++i) arguments.push_back(Utf8FromPath(wide.get()[i]));
  return arguments;
}

bool OutputIsTerminal() {
  return _isatty(_fileno(stdout)) != 0;
}

bool ErrorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

Secret TakeVariable(const char* name) {
  const std::wstring wideName(name, name + std::char_traits<char>::length(name));
  wchar_t* value = _wgetenv(wideName.c_str());
  if (value == nullptr) return {};
  std::string text(std::wcslen(value) * 4, '\0');
  text.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, value, static_cast<int>(std::wcslen(value)), text.data(),
                                                   static_cast<int>(text.size()), nullptr, nullptr)));
  WipeBytes(value, std::wcslen(value) * sizeof(wchar_t));
  (void)_wputenv_s(wideName.c_str(), L"");  // takes it away
  return Secret::TakenFrom(text);
}

}  // namespace kv
