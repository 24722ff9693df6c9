#include <algorithm>
#include <iterator>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/DownloadActions.h"
#include "base/PathText.h"
#include "download/CompactController.h"
#include "download/DownloadFamily.h"
#include "download/DownloadFile.h"
#include "download/OsFileLists.h"
#include "download/OsFileName.h"
#include "download/clsAurexOSDownloader.h"
#include "download/clsBrioQ50OSDownloader.h"

namespace kv::cli {

namespace {

namespace fs = std::filesystem;

// Aurex or Compact; a colour controller is refused.
OrFailure<DownloadFamily> FamilyOf(ConnectedController& controller) {
  const auto family = DownloadFamilyOf(controller.Link(), controller.Version().model);
  if (!family) return std::unexpected(controller.LastFailure());
  if (*family != DownloadFamily::Colour) return *family;
  return std::unexpected(NotFitFailure("downloading an O/S", std::string(kColourOsRefusal), "",
                                       "use the tool that is made for controllers with a colour screen"));
}

// Takes what the user has named, else what is preselected.
class OsTerminal final : public TerminalDownload {
 public:
  OsTerminal(Environment& environment, const CommonOptions& common, const DownloadFlags& flags, const OsFiles& files)
      : TerminalDownload(environment, common, flags.consents, flags.isDryRun), mFiles(files) {}

  AurexOsChoice ChooseAurexOs(const AurexOsLists& lists) override {
    mChoice = {mFiles.os ? *mFiles.os : Preselected(lists.os), mFiles.fonts ? *mFiles.fonts : Preselected(lists.fonts)};
    return mChoice;
  }
  std::optional<std::size_t> ChooseCompactOs(const FileList& list) override {
    mChoice.os = Preselected(list);
    return list.preselected;
  }

  // Empty before there was a choice.
  [[nodiscard]] const AurexOsChoice& Choice() const { return mChoice; }

 private:
  [[nodiscard]] static fs::path Preselected(const FileList& list) {
    return list.preselected ? list.files[*list.preselected].path : fs::path();
  }

  OsFiles mFiles;
  AurexOsChoice mChoice;
};

// What both downloaders leave behind.
struct Ending {
  DownloadOutcome outcome;
  std::optional<DownloadReview> review;
};

// One download, from the files that were named to what is told about it.
class OsDownload {
 public:
  OsDownload(Environment& environment, const CommonOptions& common, const OsFiles& files, const DownloadFlags& flags)
      : mEnvironment(environment),
        mCommon(common),
        mFiles(files),
        mFlags(flags),
        mWindow(environment, common, flags, files) {}

  [[nodiscard]] VerbResult Run() {
    auto backup = TerminalBackup::Prepare(mEnvironment, mCommon, mFlags);
    if (!backup) return std::unexpected(backup.error());
    mBackup = *std::move(backup);
    auto controller = ConnectedController::Open(mEnvironment, mCommon, ConnectedController::Reaching::AtAnySpeed);
    if (!controller) return std::unexpected(controller.error());
    mController = *std::move(controller);
    const auto family = FamilyOf(*mController);
    if (!family) return std::unexpected(family.error());
    if (const auto fits = CheckFamilyOfFile(*family); !fits) return std::unexpected(fits.error());
    if (*family == DownloadFamily::Compact && mFiles.fonts) {
      return std::unexpected(UsageFailure("a controller of the compact family takes no system fonts"));
    }
    mIsAurex = *family == DownloadFamily::Aurex;
    const Ending ending = *family == DownloadFamily::Aurex ? SendAurex() : SendCompact();
    mBackup->TellWarnings(mEnvironment);
    return Report(ending);
  }

 private:
  // What a file of the other family lacks else is of no use to who named the wrong one.
  [[nodiscard]] OrFailure<void> CheckFamilyOfFile(DownloadFamily family) const {
    const auto kind = mFiles.os ? KindOfDownloadFile(*mFiles.os) : std::nullopt;
    const bool isAurex = family == DownloadFamily::Aurex;
    if (kind != (isAurex ? DownloadFileKind::CompactOs : DownloadFileKind::AurexOs)) return {};
    return std::unexpected(NotFitFailure("downloading the O/S",
                                         Utf8FromPath(mFiles.os->filename()) +
                                             " is an O/S for controllers of the other family. " +
                                             std::string(LeftBehindText(ControllerLeft::Untouched)),
                                         "", std::string("name a ") + (isAurex ? ".kos" : ".OSI") + " file"));
  }

  [[nodiscard]] Ending SendAurex() {
    // Who consents to the download has been told that the program stops.
    const std::optional<bool> mayStop =
        mFlags.backupOrder.mayStop || !mCommon.yes ? mFlags.backupOrder.mayStop : std::optional(true);
    TerminalCloner cloner(mEnvironment, mCommon, {}, mayStop);
    const PacerWallClock clock;
    const WatchedWork work(mEnvironment);
    clsAurexOSDownloader engine(mWindow, {cloner, cloner, mWindow, mEnvironment.pacer, clock, work.Work()},
                                mCommon.paths);
    static_cast<void>(engine.DownloadOS(mController->Link(), Order()));
    return {engine.Outcome(), engine.Review()};
  }

  [[nodiscard]] Ending SendCompact() {
    clsBrioQ50OSDownloader engine(mWindow, mWindow, mEnvironment.pacer, mCommon.paths);
    if (mFiles.os) engine.UseFile(*mFiles.os);
    static_cast<void>(engine.DownloadOS(mController->Link(), Order()));
    return {engine.Outcome(), engine.Review()};
  }

  [[nodiscard]] const DownloadOrder& Order() {
    mOrder.link = mController->Description();
    mOrder.selectedModel = mController->SelectedModel();
    mOrder.usualBaudRate = mController->Driver().UsualBaudRate();
    mOrder.isDryRun = mFlags.isDryRun;
    mOrder.backup = mBackup->Backup();
    mOrder.promptsOf = [this](DownloadQuestion question) -> Prompts& { return mWindow.PromptsOf(question); };
    mOrder.asksBeforeStop = mEnvironment.input.IsInteractive();
    mOrder.onPreview = [this](const DownloadPreview& shown) {
      mPreview = shown;
      mEnvironment.err << FilesText() << PreviewText(shown) << std::flush;
    };
    return mOrder;
  }

  [[nodiscard]] fs::path OsFile() const { return mFiles.os ? *mFiles.os : mWindow.Choice().os; }

  [[nodiscard]] std::string FilesText() const {
    const fs::path& fonts = mWindow.Choice().fonts;
    return "O/S file: " + Utf8FromPath(OsFile()) + "\n" +
           (fonts.empty() ? "" : "System fonts: " + Utf8FromPath(fonts) + "\n");
  }

  [[nodiscard]] VerbResult Report(const Ending& ending) const {
    const DownloadEnd end = ending.outcome.end;
    if (end != DownloadEnd::Done && end != DownloadEnd::WouldGoOn) {
      Failure failure = DownloadFailure("downloading the O/S", ending.outcome, mWindow);
      if (const std::string cure = CureOf(ending.outcome); mIsAurex && !cure.empty()) failure.cure = cure;
      return std::unexpected(std::move(failure));
    }
    VerbOutput output = ReportOf(mPreview, ending.review, mFlags.isDryRun);
    if (mIsAurex && end == DownloadEnd::Done) {  // which no box has told
      output.text = ending.outcome.done + "\n" + std::string(LeftBehindText(ending.outcome.left)) + "\n" + output.text;
    }
    output.document["file"] = Utf8FromPath(OsFile());
    if (!mWindow.Choice().fonts.empty()) output.document["fonts"] = Utf8FromPath(mWindow.Choice().fonts);
    return output;
  }

  // The options that the way out needs.
  [[nodiscard]] std::string CureOf(const DownloadOutcome& outcome) const {
    using enum ControllerLeft;
    constexpr ControllerLeft kInBoot[] = {BootLoader,        BootLoaderAsFound, BootLoaderErased,
                                          BootLoaderPerhaps, OsProgramming,     OsWaits};
    if (outcome.end == DownloadEnd::Refused && (OsFile().empty() || mWindow.Choice().fonts.empty())) {
      return "name both with --file FILE.kos --fonts FILE.kft";
    }
    if (std::ranges::find(kInBoot, outcome.left) == std::end(kInBoot)) return {};
    return "a download into a boot loader wants --lose-project and --lose-values: nothing is known of what ran before";
  }

  Environment& mEnvironment;
  const CommonOptions& mCommon;
  const OsFiles& mFiles;
  const DownloadFlags& mFlags;
  OsTerminal mWindow;
  std::unique_ptr<TerminalBackup> mBackup;
  std::unique_ptr<ConnectedController> mController;
  DownloadOrder mOrder;
  DownloadPreview mPreview;
  bool mIsAurex = false;
};

// Adds the files of a list to both forms of an answer.
void Show(const FileList& list, const char* what, VerbOutput& output) {
  auto& shown = output.document[what] = nlohmann::ordered_json::array();
  output.text += Utf8FromPath(list.folder) + "\n";
  if (list.IsEmpty()) output.text += "    there is none here\n";
  for (std::size_t i = 0; i < list.files.size(); ++i) {
    const bool isNewest = list.preselected == i;
    const std::string path = Utf8FromPath(list.files[i].path);
    const ListedFile& file = list.files[i];
    output.text += (isNewest ? "  * " : "    ") + file.text + "    " + GetFileName(file.path) +
                   (file.detail.empty() ? "" : "    " + file.detail) + "\n";
    shown.push_back({{"text", file.text}, {"file", path}, {"isPreselected", isNewest}, {"detail", file.detail}});
  }
}

}  // namespace

VerbResult DownloadOs(Environment& environment, const CommonOptions& common, const OsFiles& files,
                      const DownloadFlags& flags) {
  return OsDownload(environment, common, files, flags).Run();
}

VerbResult ListOs(Environment& environment, const CommonOptions& common) {
  const auto controller = ConnectedController::Open(environment, common, ConnectedController::Reaching::AtAnySpeed);
  if (!controller) return std::unexpected(controller.error());
  const auto family = FamilyOf(**controller);
  if (!family) return std::unexpected(family.error());
  const VersionInfo& version = (*controller)->Version();
  const ProgramPaths& paths = common.paths;
  VerbOutput output;
  if (*family == DownloadFamily::Aurex) {
    const AurexOsLists lists = ListAurexOsFiles(paths, AurexOsModelText(version.model, version.hardwareCode));
    Show(lists.os, "os", output);
    Show(lists.fonts, "fonts", output);
    return output;
  }
  const auto compact = ParseCompactIdentification(version.model + "|" + version.hardwareCode + "|" + version.osVersion);
  if (!compact) {
    return std::unexpected(NotFitFailure("listing O/S files", "the controller's model is not known", "", ""));
  }
  Show(ListCompactOsFiles(paths, *compact), "os", output);
  return output;
}

}  // namespace kv::cli
