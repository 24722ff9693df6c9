#pragma once

#include <string>
#include <vector>

#include "secret/Secret.h"

namespace kv {

// The edge of a console program, where the platforms differ. ConsoleProgramPosix.cpp and ConsoleProgramWindows.cpp
// implement it.

// While it lives the console takes UTF-8, and a reader that goes away is an error of the write instead of the program's
// end.
class ConsoleSetup {
 public:
  ConsoleSetup();
  ~ConsoleSetup();  // gives the console back as it was
  ConsoleSetup(const ConsoleSetup&) = delete;
  ConsoleSetup& operator=(const ConsoleSetup&) = delete;

 private:
  [[maybe_unused]] unsigned mPreviousCodePage = 0;  // on Windows
};

// The arguments in UTF-8, without the program's name.
[[nodiscard]] std::vector<std::string> Utf8Arguments(int argc, char** argv);

[[nodiscard]] bool OutputIsTerminal();
[[nodiscard]] bool ErrorIsTerminal();

// The value of a variable, in UTF-8, taken out of the environment: there other programs of this user can read it, and
// those that this one starts inherit it.
[[nodiscard]] Secret TakeVariable(const char* name);

}  // namespace kv
