#pragma once

#include <string>

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Reads operands and prints one a line, or the one text in which a grid row would show them.
class VerbRead : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "read"; }
  [[nodiscard]] const char* Summary() const override { return "Read operands"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mType;
  std::string mFrom;
  std::string mTo;
  std::string mSize;
  std::string mFormat;
};

}  // namespace kv::cli
