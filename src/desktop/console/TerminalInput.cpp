#include <iostream>

#include "base/ScopeGuard.h"
#include "desktop/console/ConsoleInput.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <termios.h>
#include <unistd.h>
#endif

namespace kv {

namespace {

// Stops the showing of typed characters until the returned guard ends; the terminal goes on as it was.
#ifdef _WIN32

auto HideTyping() {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  DWORD mode = 0;
  const bool changed = GetConsoleMode(input, &mode) != 0;
  if (changed) SetConsoleMode(input, mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT));
  return ScopeGuard([input, mode, changed] {
    if (changed) SetConsoleMode(input, mode);
  });
}

bool IsTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

#else

auto HideTyping() {
  termios shown{};
  const bool changed = tcgetattr(STDIN_FILENO, &shown) == 0;
  if (changed) {
    termios hidden = shown;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
  }
  return ScopeGuard([shown, changed] {
    if (changed) tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
  });
}

bool IsTerminal() {
  return isatty(STDIN_FILENO) != 0;
}

#endif

}  // namespace

bool TerminalInput::IsInteractive() const {
  return IsTerminal();
}

std::optional<std::string> TerminalInput::ReadLine(bool secret) {
  auto showAgain = HideTyping();
  if (!secret) showAgain.Run();
  std::string line;
  const bool read = static_cast<bool>(std::getline(std::cin, line));
  std::cin.clear();
  if (secret) std::cerr << '\n';  // the line end was not shown either
  return read ? std::optional(line) : std::nullopt;
}

}  // namespace kv
