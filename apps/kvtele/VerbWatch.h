#pragma once

#include <string>

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Reads the regions of a region file over and over and prints what changes, as it changes.
class VerbWatch : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "watch"; }
  [[nodiscard]] const char* Summary() const override { return "Print the changes in the regions of a file"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mFile;
  int mCount = 0;    // changes; 0: no limit
  int mSeconds = 0;  // 0: no limit
  int mPause = 200;  // milliseconds
};

}  // namespace kv::cli
