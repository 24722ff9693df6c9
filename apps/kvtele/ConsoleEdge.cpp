#include "apps/kvtele/ConsoleEdge.h"

#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on
#include <io.h>

#include <memory>
#else
#include <unistd.h>

#include <csignal>
#endif

namespace kv::cli {

#ifdef _WIN32

namespace {

std::string Utf8FromWide(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.pop_back();  // the terminating NUL
  return utf8;
}

}  // namespace

// The narrow arguments have lost every character that the code page lacks, so the command line is read again.
std::vector<std::string> Utf8Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; wide && i < count; ++i) arguments.push_back(Utf8FromWide(wide.get()[i]));
  return arguments;
}

ConsoleSetup::ConsoleSetup() : mPreviousCodePage(GetConsoleOutputCP()) {
  SetConsoleOutputCP(CP_UTF8);
}

ConsoleSetup::~ConsoleSetup() {
  if (mPreviousCodePage != 0) SetConsoleOutputCP(mPreviousCodePage);
}

bool OutputIsTerminal() {
  return _isatty(_fileno(stdout)) != 0;
}

bool ErrorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

#else

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

ConsoleSetup::ConsoleSetup() {
  (void)std::signal(SIGPIPE, SIG_IGN);
}

ConsoleSetup::~ConsoleSetup() = default;

bool OutputIsTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

bool ErrorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

#endif

}  // namespace kv::cli
