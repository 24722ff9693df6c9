#pragma once

#include <string>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Operands.h"
#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Writes operands, reads them back and compares.
class VerbWrite : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "write"; }
  [[nodiscard]] const char* Summary() const override { return "Write operands, read them back and compare"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<Region> CheckOrder(const Environment& environment, const CommonOptions& common) const;
  [[nodiscard]] VerbResult Compare(Environment& environment, ConnectedController& controller,
                                   const Region& region) const;

  std::string mType;
  std::string mFrom;
  std::vector<std::string> mValues;
};

}  // namespace kv::cli
