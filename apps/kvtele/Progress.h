#pragma once

#include <cstddef>
#include <string>

#include "apps/kvtele/TerminalLine.h"
#include "desktop/RemainingTime.h"

namespace kv::cli {

// Tells on the terminal how far long work is and how long it will still take, until it ends. Shows nothing for work of
// a single step.
class Progress {
 public:
  Progress(Environment& environment, std::string what, std::size_t total)
      : mLine(environment), mRemaining(environment.pacer), mWhat(std::move(what)), mTotal(total) {
    mRemaining.Begin();
  }

  void Show(std::size_t done) {
    if (mTotal <= 1) return;
    const std::string left = mRemaining.Text(done, mTotal);
    mLine.Show(mWhat + ": " + std::to_string(done) + " of " + std::to_string(mTotal) +
               (left.empty() ? "" : ", " + left));
  }

 private:
  TerminalLine mLine;
  RemainingTime mRemaining;
  std::string mWhat;
  std::size_t mTotal;
};

}  // namespace kv::cli
