#pragma once

#include <string>
#include <vector>

#include "apps/kvtele/RegionValues.h"
#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Reads or writes all regions of a region file.
class VerbRegions : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "regions"; }
  [[nodiscard]] const char* Summary() const override { return "Read or write the regions of a file"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckArguments() const;
  [[nodiscard]] VerbResult Read(Environment& environment, const CommonOptions& common, const RegionsFile& file) const;
  [[nodiscard]] VerbResult Write(Environment& environment, const CommonOptions& common, const RegionsFile& file) const;

  std::string mAction;
  std::string mFile;
  std::string mValuesFile;
  bool mAsCsv = false;
};

}  // namespace kv::cli
