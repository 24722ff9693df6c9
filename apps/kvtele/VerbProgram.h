#pragma once

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Starts or stops the controller's program, after a question that names whose it is.
class VerbProgram : public Verb {
 public:
  explicit VerbProgram(bool runs) : mRuns(runs) {}

  [[nodiscard]] const char* Name() const override { return mRuns ? "run" : "stop"; }
  [[nodiscard]] const char* Summary() const override {
    return mRuns ? "Start the controller's program" : "Stop the controller's program";
  }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App&) override {}
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> Switch(ConnectedController& controller) const;

  bool mRuns;
};

}  // namespace kv::cli
