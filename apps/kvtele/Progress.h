#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "apps/kvtele/Environment.h"

namespace kv::cli {

// One line on the terminal that tells how far long work is, wiped when the work ends. Shows nothing where nobody would
// see it, nor for work of a single step.
class Progress {
 public:
  Progress(Environment& environment, std::string what, std::size_t total)
      : mErr(environment.err),
        mIsShown(environment.errIsTerminal && total > 1),
        mWhat(std::move(what)),
        mTotal(total) {}
  ~Progress() {
    if (mIsShown) mErr << "\r" << std::string(mWidth, ' ') << "\r" << std::flush;
  }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(std::size_t done) {
    if (!mIsShown) return;
    const std::string line = mWhat + ": " + std::to_string(done) + " of " + std::to_string(mTotal);
    mErr << "\r" << line << std::flush;
    mWidth = line.size();
  }

 private:
  std::ostream& mErr;
  bool mIsShown;
  std::string mWhat;
  std::size_t mTotal;
  std::size_t mWidth = 0;
};

}  // namespace kv::cli
