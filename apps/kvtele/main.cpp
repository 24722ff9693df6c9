#ifdef _WIN32
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on
#include <io.h>
#else
#include <unistd.h>

#include <csignal>
#endif

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/ports/PortList.h"
#include "apps/kvtele/DriverMaker.h"
#include "apps/kvtele/KvTele.h"
#include "base/ProgramPaths.h"
#include "desktop/PacerWallClock.h"
#include "desktop/console/ConsolePacer.h"
#include "desktop/console/HarmlessText.h"
#include "secret/CoreFiles.h"

// What the platforms do differently at the edge of a console program.
namespace {

// Makes the console take UTF-8, and a reader that goes away an error of the write instead of the program's end.
class ConsoleSetup {
 public:
  ConsoleSetup();
  ~ConsoleSetup();  // gives the console back as it was
  ConsoleSetup(const ConsoleSetup&) = delete;
  ConsoleSetup& operator=(const ConsoleSetup&) = delete;

 private:
  [[maybe_unused]] unsigned mPreviousCodePage = 0;  // on Windows
};

#ifdef _WIN32

ConsoleSetup::ConsoleSetup() : mPreviousCodePage(GetConsoleOutputCP()) {
  SetConsoleOutputCP(CP_UTF8);
}

ConsoleSetup::~ConsoleSetup() {
  if (mPreviousCodePage != 0) SetConsoleOutputCP(mPreviousCodePage);
}

std::string Utf8FromWide(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.pop_back();  // the terminating NUL
  return utf8;
}

// In UTF-8, without the program's name. The narrow arguments have lost every character that the code page lacks, so the
// command line is read again.
std::vector<std::string> Utf8Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; wide && i < count; ++i) arguments.push_back(Utf8FromWide(wide.get()[i]));
  return arguments;
}

bool OutputIsTerminal() {
  return _isatty(_fileno(stdout)) != 0;
}

bool ErrorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

kv::Secret TakeVariable(const char* name) {
  const char* value = std::getenv(name);
  const kv::Secret secret{std::string_view(value == nullptr ? "" : value)};
  (void)_putenv_s(name, "");  // takes it away
  return secret;
}

#else

ConsoleSetup::ConsoleSetup() {
  (void)std::signal(SIGPIPE, SIG_IGN);
}

ConsoleSetup::~ConsoleSetup() = default;

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

bool OutputIsTerminal() {
  return isatty(STDOUT_FILENO) != 0;
}

bool ErrorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

// Out of the environment, where other programs of this user can read it and those that this one starts inherit it.
kv::Secret TakeVariable(const char* name) {
  char* value = std::getenv(name);
  if (value == nullptr) return {};
  kv::Secret secret{std::string_view(value)};
  kv::WipeBytes(value, std::strlen(value));
  unsetenv(name);
  return secret;
}

#endif

}  // namespace

int main(int argc, char** argv) {
  using namespace kv;
  ForbidCoreFiles();
  const ConsoleSetup setup;
  ConsolePacer pacer;
  const PacerWallClock clock;
  TerminalInput input;
  const bool errIsTerminal = ErrorIsTerminal();
  HarmlessBuffer shownOut(std::cout, "\n\t");
  HarmlessBuffer shownErr(std::cerr, "\n\t\r");  // progress is written over and over in one line
  std::ostream terminalOut(&shownOut);
  std::ostream terminalErr(&shownErr);
  cli::DriverMaker drivers(pacer, clock, std::cerr);
  cli::Environment environment{
      .out = OutputIsTerminal() ? terminalOut : std::cout,
      .err = errIsTerminal ? terminalErr : std::cerr,
      .errIsTerminal = errIsTerminal,
      .input = input,
      .pacer = pacer,
      .clock = clock,
      .password = TakeVariable("KVTELE_PASSWORD"),
      .home = ExecutableFolder(),
      .makeDriver = [&drivers](const cli::DriverOrder& order) { return drivers.Make(order); },
      .listSerialPorts = ListSerialPorts,
      .journalDisk = &SystemJournalDisk(),
      .stateFolder = UserStateFolder(),
  };
  return static_cast<int>(cli::RunKvTele(Utf8Arguments(argc, argv), environment));
}
