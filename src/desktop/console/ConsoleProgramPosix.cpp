#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "desktop/console/ConsoleProgram.h"

namespace kv {

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

Secret TakeVariable(const char* name) {
  char* value = std::getenv(name);
  if (value == nullptr) return {};
  Secret secret{std::string_view(value)};
  WipeBytes(value, std::strlen(value));
  unsetenv(name);
  return secret;
}

}  // namespace kv
