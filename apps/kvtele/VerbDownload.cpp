#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <string>

#include "apps/kvtele/DownloadActions.h"
#include "apps/kvtele/Verb.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

constexpr int kMostRetries = 1000;

// Looks into download files and sends them: what the download window does.
class VerbDownload : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "download"; }
  [[nodiscard]] const char* Summary() const override {
    return "Send a project or an O/S into a controller; look into its file";
  }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckAction() const;
  [[nodiscard]] OrFailure<DownloadFlags> CheckBackup(Environment& environment) const;

  std::string mAction;
  std::string mFile;    // UTF-8 path
  std::string mOs;      // UTF-8 paths; empty: none was named
  std::string mFonts;   //
  std::string mBackup;  // UTF-8 path; empty: none
  DownloadFlags mFlags;
  bool mList = false;
  bool mReplace = false;
  bool mStop = false;
  bool mNoStop = false;
};

const char* VerbDownload::Examples() const {
  return "  kvtele download info Samples/Conveyor.dai                               what the file is\n"
         "  kvtele --link sim:K220-22-R1 download project Samples/Conveyor.dai --dry-run\n"
         "  kvtele --link sim:K220-22-R1 --yes download project Samples/Conveyor.dai\n"
         "  kvtele --link tcp:192.168.1.20 --password-file pw.txt download project hall7.dai --backup b.kdf --stop\n"
         "  kvtele --link sim:K220-22-R1 download os --list                           what there is for this "
         "controller\n"
         "  kvtele --link sim:K220-22-R1 --yes download os                            the newest that fits it\n"
         "  kvtele --link tcp:192.168.1.20 download os --file AurexK330v47503.kos --dry-run\n";
}

void VerbDownload::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "info (of a .dai, .d50, .kos, .kft or .OSI file), project or os")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"info", "project", "os"}));
  app.add_option("FILE", mFile, "info, project: the download file")->type_name("");
  app.add_option("--file", mOs, "os: this O/S; else the newest beside the program that fits the controller")
      ->type_name("FILE");
  app.add_option("--fonts", mFonts, "os: these system fonts of an Aurex controller; else the newest")
      ->type_name("FILE");
  app.add_flag("--list", mList, "os: only show what could be sent to the controller");
  app.add_flag("--dry-run", mFlags.isDryRun, "everything up to the point where the controller would change, in words");
  app.add_option("--backup", mBackup, "clone what the controller holds into FILE.kdf before, and compare both")
      ->type_name("FILE.kdf");
  app.add_flag("--replace", mReplace, "--backup: a file of this name may be replaced");
  CLI::Option* stop = app.add_flag("--stop", mStop, "--backup: a running program may be stopped for it");
  app.add_flag("--no-stop", mNoStop, "--backup: a running program is cloned while it runs")->excludes(stop);
  app.add_flag("--other-model", mFlags.consents.otherModel, "project: also one that is made for another compact model");
  app.add_flag("--no-reset", mFlags.consents.noReset, "project: also one that does not end with a restart");
  app.add_flag("--end-load", mFlags.consents.endLoad,
               "end a load that is under way in the controller or was cut, somebody else's, too");
  app.add_option("--retry", mFlags.consents.retries,
                 "os: send a message that is not answered again, so often in all; each time the link is opened anew")
      ->type_name("N")
      ->check(CLI::Range(0, kMostRetries));
  app.add_flag("--same-os", mFlags.consents.sameOs, "os: also one that is installed already");
  app.add_flag("--older-os", mFlags.consents.olderOs, "os: also one that is older than the installed one");
  app.add_flag("--lose-project", mFlags.consents.loseProject, "os: also one that may erase the project");
  app.add_flag("--lose-values", mFlags.consents.loseValues, "os: also one to which the operands' values mean nothing");
}

OrFailure<void> VerbDownload::CheckAction() const {
  struct Row {
    bool isGiven;
    const char* flags;
    std::string_view actions;
  };
  const ConsentFlags& consents = mFlags.consents;
  const Row rows[] = {
      {!mFile.empty(), "FILE", "info project"},
      {!mOs.empty() || !mFonts.empty() || mList, "--file, --fonts and --list", "os"},
      {mFlags.isDryRun || !mBackup.empty() || consents.endLoad, "--dry-run, --backup and --end-load", "project os"},
      {mReplace || mStop || mNoStop, "--replace, --stop and --no-stop", "project os"},
      {consents.otherModel || consents.noReset, "--other-model and --no-reset", "project"},
      {consents.sameOs || consents.olderOs || consents.loseProject || consents.loseValues || consents.retries > 0,
       "--same-os, --older-os, --lose-project, --lose-values and --retry", "os"},
  };
  for (const Row& row : rows) {
    if (!row.isGiven || row.actions.contains(mAction)) continue;
    return std::unexpected(UsageFailure(std::string(row.flags) + " mean nothing with " + mAction));
  }
  if (mAction != "os" && mFile.empty()) return std::unexpected(UsageFailure("FILE is missing"));
  if (mOs.empty() && !mFonts.empty()) return std::unexpected(UsageFailure("--fonts belong to a --file"));
  const bool doesMore = !mOs.empty() || mFlags.isDryRun || !mBackup.empty();
  if (mList && doesMore) return std::unexpected(UsageFailure("--list only shows what there is"));
  return {};
}

OrFailure<DownloadFlags> VerbDownload::CheckBackup(Environment& environment) const {
  const bool hasStopFlag = mStop || mNoStop;
  if (mBackup.empty() && (mReplace || (hasStopFlag && mAction != "os"))) {
    return std::unexpected(UsageFailure("--replace, --stop and --no-stop are about the --backup"));
  }
  if (!mBackup.empty() && !hasStopFlag && !mFlags.isDryRun && !environment.input.IsInteractive()) {
    return std::unexpected(UsageFailure("whether a running program may be stopped for the backup is not said",
                                        "give --stop (it runs again afterwards) or --no-stop with --backup"));
  }
  DownloadFlags flags = mFlags;
  if (hasStopFlag) flags.backupOrder.mayStop = mStop;
  if (mBackup.empty()) return flags;
  flags.backup = PathFromUtf8(mBackup);
  flags.backupOrder.replace = mReplace;
  return flags;
}

VerbResult VerbDownload::Run(Environment& environment, const CommonOptions& common) {
  if (const auto fit = CheckAction(); !fit) return std::unexpected(fit.error());
  const auto flags = CheckBackup(environment);
  if (!flags) return std::unexpected(flags.error());
  const std::filesystem::path file = PathFromUtf8(mFile);
  if (mAction == "info") return ReportDownloadFile(file);
  if (mAction == "project") return DownloadProject(environment, common, file, *flags);
  if (mList) return ListOs(environment, common);
  OsFiles files;
  if (!mOs.empty()) files.os = PathFromUtf8(mOs);
  if (!mFonts.empty()) files.fonts = PathFromUtf8(mFonts);
  return DownloadOs(environment, common, files, *flags);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbDownload() {
  return std::make_unique<VerbDownload>();
}

}  // namespace kv::cli
