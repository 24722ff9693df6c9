#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "apps/kvtele/Environment.h"
#include "desktop/RemainingTime.h"

namespace kv::cli {

// One line on the terminal that is written over and over, and wiped at the end. Shows nothing where nobody would see
// it.
class TerminalLine {
 public:
  explicit TerminalLine(Environment& environment) : mErr(environment.err), mIsShown(environment.errIsTerminal) {}
  ~TerminalLine() { Wipe(); }
  TerminalLine(const TerminalLine&) = delete;
  TerminalLine& operator=(const TerminalLine&) = delete;

  void Show(const std::string& text) {
    if (!mIsShown) return;
    const std::size_t rest = text.size() < mWidth ? mWidth - text.size() : 0;
    mErr << "\r" << text << std::string(rest, ' ') << std::flush;
    mWidth = text.size() + rest;
  }
  void Wipe() {
    if (mWidth > 0) mErr << "\r" << std::string(mWidth, ' ') << "\r" << std::flush;
    mWidth = 0;
  }

 private:
  std::ostream& mErr;
  bool mIsShown;
  std::size_t mWidth = 0;
};

// Tells on the terminal how far long work is and how long it will still take, until it ends. Shows nothing for work of
// a single step.
class TerminalProgress {
 public:
  TerminalProgress(Environment& environment, std::string what, std::size_t total)
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
