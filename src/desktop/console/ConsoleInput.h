#pragma once

#include <optional>
#include <string>

namespace kv {

// Where the console's questions get their typed answers from.
class ConsoleInput {
 public:
  virtual ~ConsoleInput() = default;

  // Whether a person can be asked.
  [[nodiscard]] virtual bool IsInteractive() const = 0;

  // One line without its end; nothing at the end of the input or after Ctrl-C. A secret is not shown while it is typed.
  [[nodiscard]] virtual std::optional<std::string> ReadLine(bool secret) = 0;
};

// The process's standard input.
class TerminalInput final : public ConsoleInput {
 public:
  [[nodiscard]] bool IsInteractive() const override;
  [[nodiscard]] std::optional<std::string> ReadLine(bool secret) override;
};

}  // namespace kv
