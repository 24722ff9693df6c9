#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "apps/kvtele/Environment.h"

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

}  // namespace kv::cli
