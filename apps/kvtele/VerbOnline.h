#pragma once

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Goes through what On Line does in the window, up to where the panel would be shown, and tells the result. All of it
// works on a copy of the session, which stays as it is: a window may be using it.
class VerbOnline : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "online"; }
  [[nodiscard]] const char* Summary() const override { return "Tell whether Telepanel can go on line, and with what"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mProject;  // path of a pages file; empty: none
};

}  // namespace kv::cli
