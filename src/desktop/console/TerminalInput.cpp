#include <algorithm>
#include <iostream>

#include "base/ScopeGuard.h"
#include "desktop/console/ConsoleInput.h"
#include "secret/Secret.h"

#ifdef _WIN32
#include <windows.h>

#include <array>
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

// A line of the console, with its end, in UTF-8. Read past the stream, whose buffer would keep it, and which would give
// it in the console's code page. Nothing after Ctrl-C and after Ctrl-Z, which ends the input.
std::optional<std::string> ReadTypedLine() {
  constexpr wchar_t kEndOfInput = 0x1A;
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  DWORD count = 0;
  if (!IsTerminal()) {
    std::string line(1024, '\0');
    const BOOL isRead = ReadFile(input, line.data(), static_cast<DWORD>(line.size()), &count, nullptr);
    line.resize(isRead ? count : 0);
    return count > 0 ? std::optional(std::move(line)) : std::nullopt;
  }
  std::array<wchar_t, 1024> typed{};
  const BOOL isRead = ReadConsoleW(input, typed.data(), typed.size(), &count, nullptr);
  if (!isRead || count == 0 || typed.front() == kEndOfInput) return std::nullopt;
  std::string line(typed.size() * 4, '\0');
  line.resize(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, typed.data(), static_cast<int>(count), line.data(),
                                                   static_cast<int>(line.size()), nullptr, nullptr)));
  WipeBytes(typed.data(), sizeof typed);
  return line;
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

// A line of the terminal, with its end: it hands out one at a time, however much is asked for. Read past the stream,
// whose buffer would keep it.
std::optional<std::string> ReadTypedLine() {
  std::string line(1024, '\0');
  const ssize_t count = ::read(STDIN_FILENO, line.data(), line.size());
  line.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0 ? std::optional(std::move(line)) : std::nullopt;
}

#endif

}  // namespace

bool TerminalInput::IsInteractive() const {
  return IsTerminal();
}

namespace {

std::optional<std::string> WithoutEnd(std::optional<std::string> line) {
  if (line) line->resize(std::min(line->find_first_of("\r\n"), line->size()));
  return line;
}

std::optional<std::string> ReadSecret() {
  const auto showAgain = HideTyping();
  auto line = ReadTypedLine();
  std::cerr << '\n';  // the line end was not shown either
  return WithoutEnd(std::move(line));
}

}  // namespace

std::optional<std::string> TerminalInput::ReadLine(bool secret) {
  if (secret) return ReadSecret();
#ifdef _WIN32
  if (IsTerminal()) return WithoutEnd(ReadTypedLine());
#endif
  std::string line;
  const bool read = static_cast<bool>(std::getline(std::cin, line));
  std::cin.clear();
  return read ? std::optional(line) : std::nullopt;
}

}  // namespace kv
