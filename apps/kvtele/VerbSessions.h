#pragma once

#include <string>

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Lists, copies and deletes sessions, as the session window does.
class VerbSessions : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "sessions"; }
  [[nodiscard]] const char* Summary() const override { return "List, create or delete sessions"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mAction;
  std::string mName;
};

}  // namespace kv::cli
