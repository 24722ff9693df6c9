#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "apps/kvtele/Verb.h"

namespace kv::cli {

// Makes clone files, restores them, and looks into them: what the cloner window does, and what a user asks for before
// a backup is trusted.
class VerbClone : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "clone"; }
  [[nodiscard]] const char* Summary() const override { return "Copy a controller into a file, and back; compare both"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckArguments() const;
  [[nodiscard]] VerbResult Transfer(Environment& environment, const CommonOptions& common,
                                    const std::filesystem::path& file) const;

  std::string mAction;
  std::vector<std::string> mFiles;  // UTF-8 paths
  std::string mSegments;
  std::string mComment;
  std::string mBackup;  // UTF-8 path; empty: none
  bool mReplace = false;
  bool mStop = false;
  bool mNoStop = false;
  bool mForce = false;
  bool mVerify = false;
  bool mEraseEmpty = false;
  bool mUnitFromController = false;
};

}  // namespace kv::cli
