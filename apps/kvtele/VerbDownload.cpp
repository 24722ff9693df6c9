#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <string>

#include "apps/kvtele/DownloadActions.h"
#include "apps/kvtele/Verb.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

// Looks into download files and sends them: what the download window does.
class VerbDownload : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "download"; }
  [[nodiscard]] const char* Summary() const override { return "Send a project into a controller; look into its file"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<DownloadFlags> CheckArguments(Environment& environment) const;

  std::string mAction;
  std::string mFile;    // UTF-8 path
  std::string mBackup;  // UTF-8 path; empty: none
  DownloadFlags mFlags;
  bool mReplace = false;
  bool mStop = false;
  bool mNoStop = false;
};

const char* VerbDownload::Examples() const {
  return "  kvtele download info Samples/Conveyor.dai                               what the file is\n"
         "  kvtele --link sim:K220-22-R1 download project Samples/Conveyor.dai --dry-run\n"
         "  kvtele --link sim:K220-22-R1 --yes download project Samples/Conveyor.dai\n"
         "  kvtele --link tcp:192.168.1.20 --password 1234 download project hall7.dai --backup before.kdf --stop\n";
}

void VerbDownload::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "info (of a .dai, .d50, .kos, .kft or .OSI file) or project")
      ->required()
      ->type_name("")
      ->check(CLI::IsMember({"info", "project"}));
  app.add_option("FILE", mFile, "The download file")->required()->type_name("");
  app.add_flag("--dry-run", mFlags.isDryRun, "everything up to the point where the controller would change, in words");
  app.add_option("--backup", mBackup, "clone what the controller holds into FILE.kdf before, and compare both")
      ->type_name("FILE.kdf");
  app.add_flag("--replace", mReplace, "--backup: a file of this name may be replaced");
  CLI::Option* stop = app.add_flag("--stop", mStop, "--backup: a running program may be stopped for it");
  app.add_flag("--no-stop", mNoStop, "--backup: a running program is cloned while it runs")->excludes(stop);
  app.add_flag("--other-model", mFlags.consents.otherModel, "project: also one that is made for another compact model");
  app.add_flag("--no-reset", mFlags.consents.noReset, "project: also one that does not end with a restart");
  app.add_flag("--end-load", mFlags.consents.endLoad,
               "project: end a load that is under way in the controller or was cut, somebody else's, too");
}

OrFailure<DownloadFlags> VerbDownload::CheckArguments(Environment& environment) const {
  const ConsentFlags& consents = mFlags.consents;
  const bool isAboutController =
      mFlags.isDryRun || !mBackup.empty() || consents.otherModel || consents.noReset || consents.endLoad;
  if (mAction == "info" && isAboutController) {
    return std::unexpected(UsageFailure("info asks no controller, so --dry-run, --backup and consents mean nothing"));
  }
  const bool hasBackupFlag = mReplace || mStop || mNoStop;
  if (mBackup.empty() && hasBackupFlag) {
    return std::unexpected(UsageFailure("--replace, --stop and --no-stop are about the --backup"));
  }
  if (!mBackup.empty() && !mStop && !mNoStop && !environment.input.IsInteractive()) {
    return std::unexpected(UsageFailure("whether a running program may be stopped for the backup is not said",
                                        "give --stop (it runs again afterwards) or --no-stop with --backup"));
  }
  DownloadFlags flags = mFlags;
  if (mBackup.empty()) return flags;
  flags.backup = PathFromUtf8(mBackup);
  flags.backupOrder.replace = mReplace;
  if (mStop || mNoStop) flags.backupOrder.mayStop = mStop;
  return flags;
}

VerbResult VerbDownload::Run(Environment& environment, const CommonOptions& common) {
  const auto flags = CheckArguments(environment);
  if (!flags) return std::unexpected(flags.error());
  const std::filesystem::path file = PathFromUtf8(mFile);
  return mAction == "info" ? ReportDownloadFile(file) : DownloadProject(environment, common, file, *flags);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbDownload() {
  return std::make_unique<VerbDownload>();
}

}  // namespace kv::cli
