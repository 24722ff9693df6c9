#pragma once

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Lists the serial lines of this machine.
class VerbPorts : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "ports"; }
  [[nodiscard]] const char* Summary() const override { return "List the serial lines of this machine"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;
};

}  // namespace kv::cli
