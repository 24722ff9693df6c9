#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <string_view>
#include <vector>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/VerbOutput.h"

namespace kv::cli {

// One command of the program. An object serves one run: Declare tells the parser its arguments and keeps what the user
// gave, then Run does the work.
class Verb {
 public:
  virtual ~Verb() = default;

  [[nodiscard]] virtual const char* Name() const = 0;
  // One line for the list of commands.
  [[nodiscard]] virtual const char* Summary() const = 0;
  // What --help of the command begins with: lines with an example each.
  [[nodiscard]] virtual const char* Examples() const = 0;

  virtual void Declare(CLI::App& app) = 0;
  [[nodiscard]] virtual VerbResult Run(Environment& environment, const CommonOptions& common) = 0;
};

// All commands, in the order in which --help lists them.
[[nodiscard]] std::vector<std::unique_ptr<Verb>> MakeVerbs();

}  // namespace kv::cli
