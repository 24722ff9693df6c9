#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "apps/kvtele/CloneActions.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/Verb.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

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
  bool mEndLoad = false;
  bool mEraseEmpty = false;
  bool mUnitFromController = false;
};

// "OP,AP": the texts between the commas.
std::vector<std::string> SplitCodes(const std::string& codes) {
  std::vector<std::string> split;
  for (std::size_t at = 0; !codes.empty() && at <= codes.size();) {
    const std::size_t end = std::min(codes.find(',', at), codes.size());
    split.push_back(codes.substr(at, end - at));
    at = end + 1;
  }
  return split;
}

// The optional segments that a clone takes; no codes: all.
OrFailure<SegmentBoxes> ParseSegments(const std::string& codes) {
  if (codes.empty()) return SegmentBoxes();
  SegmentBoxes boxes{.op = false, .dt = false, .ap = false, .os = false};
  for (const std::string& code : SplitCodes(codes)) {
    if (code == "OP")
      boxes.op = true;
    else if (code == "DT")
      boxes.dt = true;
    else if (code == "AP")
      boxes.ap = true;
    else if (code == "OS")
      boxes.os = true;
    else if (code != "HW" && code != "FT" && code != "MM") {
      return std::unexpected(UsageFailure("there is no segment \"" + code + "\"",
                                          "name some of OP,DT,AP,OS with commas between; HW,FT,MM are always taken"));
    }
  }
  return boxes;
}

const char* VerbClone::Examples() const {
  return "  kvtele --link sim:K220-22-R1 clone create plc.kdf --stop         asks for a password; a simulated one "
         "takes "
         "any\n"
         "  kvtele clone info plc.kdf                                        what it holds, and what is known of it\n"
         "  kvtele --link sim:K220-22-R1 clone verify plc.kdf                compare it with the controller\n"
         "  kvtele --link sim:K220-22-R1 --yes clone restore plc.kdf --verify\n"
         "  kvtele --link tcp:192.168.1.20 --password-file pw.txt clone create plc.kdf --segments AP,OS\n"
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
  app.add_option(
         "--segments", mSegments,
         "create: which of OP,DT,AP,OS the file takes; HW,FT,MM always. verify: which are compared. Default: all")
      ->type_name("CODES");
  app.add_flag("--replace", mReplace, "create, --backup: a file of this name may be replaced");
  CLI::Option* stop = app.add_flag("--stop", mStop, "create, --backup: a running program may be stopped for it");
  app.add_flag("--no-stop", mNoStop, "create, --backup: a running program is cloned while it runs")->excludes(stop);
  app.add_option("--comment", mComment, "create: a text for the manifest")->type_name("TEXT");
  app.add_flag("--force", mForce, "restore: also a damaged file, or one of another model or layout");
  app.add_flag("--verify", mVerify, "restore: compare the controller with the file afterwards");
  app.add_flag("--end-load", mEndLoad,
               "restore: end a load that is under way in the controller or was cut, somebody else's, too");
  app.add_flag("--erase-empty", mEraseEmpty, "restore: erase segments that were erased as a whole in the clone");
  app.add_flag("--unit-from-controller", mUnitFromController, "restore: send the lines for the controller's unit id");
  app.add_option("--backup", mBackup, "restore: clone what the controller holds into FILE.kdf before")
      ->type_name("FILE.kdf");
}

OrFailure<void> VerbClone::CheckArguments() const {
  struct Row {
    bool isGiven;
    const char* flags;
    std::vector<std::string> actions;
  };
  const Row rows[] = {
      {mFiles.size() > 1, "a second file", {"diff"}},
      {!mSegments.empty(), "--segments", {"create", "verify"}},
      {mReplace || mStop || mNoStop, "--replace, --stop and --no-stop", {"create", "restore"}},
      {!mComment.empty(), "--comment", {"create"}},
      {mForce || mVerify || mEndLoad || mEraseEmpty || mUnitFromController || !mBackup.empty(),
       "--force, --verify, --end-load, --erase-empty, --unit-from-controller and --backup",
       {"restore"}},
  };
  for (const Row& row : rows) {
    if (!row.isGiven || std::ranges::find(row.actions, mAction) != row.actions.end()) continue;
    std::string actions = row.actions.front();
    for (std::size_t i = 1; i < row.actions.size(); ++i) actions += " and " + row.actions[i];
    return std::unexpected(UsageFailure(std::string(row.flags) + " can be given with " + actions + " only"));
  }
  if (mAction == "restore" && mBackup.empty() && (mReplace || mStop || mNoStop)) {
    return std::unexpected(UsageFailure("--replace, --stop and --no-stop of a restore are about its --backup"));
  }
  return {};
}

VerbResult VerbClone::Run(Environment& environment, const CommonOptions& common) {
  if (const auto fit = CheckArguments(); !fit) return std::unexpected(fit.error());
  const std::filesystem::path file = PathFromUtf8(mFiles.front());
  if (mAction == "create" || mAction == "restore") return Transfer(environment, common, file);
  if (mAction == "info") return ReportClone(environment, file);
  if (mFiles.size() > 1) return CompareClones(environment, file, PathFromUtf8(mFiles.back()));
  return CompareWithController(environment, common, file, SplitCodes(mSegments));
}

VerbResult VerbClone::Transfer(Environment& environment, const CommonOptions& common,
                               const std::filesystem::path& file) const {
  const auto segments = ParseSegments(mSegments);
  if (!segments) return std::unexpected(segments.error());
  CreateOrder create{.segments = *segments, .replace = mReplace, .mayStop = {}, .comment = mComment};
  if (mStop || mNoStop) create.mayStop = mStop;
  if (mAction == "create") return CreateClone(environment, common, file, create);
  RestoreOrder restore{.force = mForce,
                       .verify = mVerify,
                       .endLoad = mEndLoad,
                       .eraseEmpty = mEraseEmpty,
                       .unitFromController = mUnitFromController,
                       .backup = {},
                       .backupOrder = create};
  if (!mBackup.empty()) restore.backup = PathFromUtf8(mBackup);
  return RestoreClone(environment, common, file, restore);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbClone() {
  return std::make_unique<VerbClone>();
}

}  // namespace kv::cli
