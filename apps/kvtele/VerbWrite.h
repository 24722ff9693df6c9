#pragma once

#include <string>
#include <vector>

#include "apps/kvtele/Connection.h"
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
  [[nodiscard]] Outcome Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] std::expected<Region, Failure> CheckOrder(const Environment& environment,
                                                          const CommonOptions& common) const;
  [[nodiscard]] Outcome Compare(Environment& environment, Connection& connection, const Region& region) const;

  std::string mType;
  std::string mFrom;
  std::vector<std::string> mValues;
};

}  // namespace kv::cli
