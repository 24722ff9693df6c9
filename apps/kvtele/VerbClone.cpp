#include "apps/kvtele/VerbClone.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>

#include "apps/kvtele/CloneReports.h"
#include "apps/kvtele/CloneTransfers.h"
#include "base/PathText.h"

namespace kv::cli {

const char* VerbClone::Examples() const {
  return "  kvtele --link sim:K220-22-R1 --password 1 clone create plc.kdf   a simulated controller takes any "
         "password\n"
         "  kvtele clone info plc.kdf                                        what it holds, and whether it is whole\n"
         "  kvtele --link sim:K220-22-R1 clone verify plc.kdf                compare it with the controller\n"
         "  kvtele --link sim:K220-22-R1 --yes clone restore plc.kdf --verify\n"
         "  kvtele --link tcp:192.168.1.20 --password 1234 clone create plc.kdf --segments AP,OS\n"
         "  kvtele clone diff monday.kdf friday.kdf                          address ranges that differ\n";
}

void VerbClone::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "create, restore, verify, info or diff")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"create", "restore", "verify", "info", "diff"}));
  app.add_option("FILE", mFiles, "The clone file; for diff one or two: one is compared with the controller")
      ->required()
      ->expected(1, 2)
      ->type_name("");
  app.add_option("--segments", mSegments,
                 "create: which of OP,DT,AP,OS the file takes; HW,FT,MM always. Default: all of them")
      ->type_name("CODES");
  app.add_flag("--force", mForce, "restore: also a damaged file, or one of another model or unit");
  app.add_flag("--verify", mVerify, "restore: compare the controller with the file afterwards");
}

std::expected<void, Failure> VerbClone::CheckArguments() const {
  if (mFiles.size() > 1 && mAction != "diff") return std::unexpected(UsageFailure(mAction + " takes one file"));
  if (!mSegments.empty() && mAction != "create") return std::unexpected(UsageFailure("--segments goes with create"));
  if ((mForce || mVerify) && mAction != "restore") {
    return std::unexpected(UsageFailure("--force and --verify go with restore"));
  }
  return {};
}

Outcome VerbClone::Run(Environment& environment, const CommonOptions& common) {
  if (const auto fit = CheckArguments(); !fit) return std::unexpected(fit.error());
  const std::filesystem::path file = PathFromUtf8(mFiles.front());
  if (mAction == "create") return CreateClone(environment, common, file, mSegments);
  if (mAction == "restore") return RestoreClone(environment, common, file, {.force = mForce, .verify = mVerify});
  if (mAction == "info") return ReportClone(environment, file);
  if (mFiles.size() > 1) return CompareClones(environment, file, PathFromUtf8(mFiles.back()));
  return CompareWithController(environment, common, file);
}

}  // namespace kv::cli
