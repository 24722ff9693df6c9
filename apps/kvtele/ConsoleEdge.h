#pragma once

#include <string>
#include <vector>

namespace kv::cli {

// What the platforms do differently at the edge of a console program.

// The arguments in UTF-8, without the program's name.
[[nodiscard]] std::vector<std::string> Utf8Arguments(int argc, char** argv);

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

// Whether the standard output, and the standard error, is a terminal.
[[nodiscard]] bool OutputIsTerminal();
[[nodiscard]] bool ErrorIsTerminal();

}  // namespace kv::cli
