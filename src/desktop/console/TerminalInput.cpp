#include <algorithm>
#include <iostream>

#include "base/ScopeGuard.h"
#include "desktop/console/ConsoleInput.h"
#include "secret/Secret.h"

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

// Reads past the stream, whose buffer would keep the line.
bool ReadHidden(char* text, std::size_t size, std::size_t& count) {
  DWORD read = 0;
  const bool isRead = ReadFile(GetStdHandle(STD_INPUT_HANDLE), text, static_cast<DWORD>(size), &read, nullptr) != 0;
  count = read;
  return isRead && read > 0;
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

// Reads past the stream, whose buffer would keep the line.
bool ReadHidden(char* text, std::size_t size, std::size_t& count) {
  const ssize_t read = ::read(STDIN_FILENO, text, size);
  count = static_cast<std::size_t>(std::max<ssize_t>(read, 0));
  return read > 0;
}

#endif

}  // namespace

bool TerminalInput::IsInteractive() const {
  return IsTerminal();
}

namespace {

// A terminal hands out one line at a time, however much is asked for.
std::optional<std::string> ReadSecret() {
  constexpr std::size_t kMostBytes = 1024;
  const auto showAgain = HideTyping();
  std::string line(kMostBytes, '\0');
  std::size_t count = 0;
  const bool isRead = ReadHidden(line.data(), line.size(), count);
  std::cerr << '\n';  // the line end was not shown either
  line.resize(std::min({count, line.find_first_of("\r\n"), line.size()}));
  return isRead ? std::optional(std::move(line)) : std::nullopt;
}

}  // namespace

std::optional<std::string> TerminalInput::ReadLine(bool secret) {
  if (secret) return ReadSecret();
  std::string line;
  const bool read = static_cast<bool>(std::getline(std::cin, line));
  std::cin.clear();
  return read ? std::optional(line) : std::nullopt;
}

}  // namespace kv
