#pragma once

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Reaches the controller and tells who it is.
class VerbIdentify : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "identify"; }
  [[nodiscard]] const char* Summary() const override { return "Tell which controller answers, and what it runs"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

}  // namespace kv::cli
