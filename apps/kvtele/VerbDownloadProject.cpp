#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/DownloadActions.h"
#include "base/PathText.h"
#include "desktop/PacerWallClock.h"
#include "download/DownloadFile.h"
#include "download/ProjectDownload.h"

namespace kv::cli {

namespace {

OrFailure<ProjectFile> ReadProjectFile(const std::filesystem::path& file) {
  const auto kind = KindOfDownloadFile(file);
  if (kind != DownloadFileKind::AurexProject && kind != DownloadFileKind::CompactProject) {
    return std::unexpected(UsageFailure(Utf8FromPath(file) + " is no project", "give a file .dai or .d50"));
  }
  const bool isCompact = kind == DownloadFileKind::CompactProject;
  auto project = ReadProject(file, isCompact);
  if (project) return *std::move(project);
  const bool isIllegal = project.error().fault == DownloadFileFault::NotLegal;
  return std::unexpected(Failure{ExitCode::BadFile, "badFile", "reading the project",
                                 project.error().Text() + (isIllegal ? "\n" + NotLegalText(isCompact) : ""), "",
                                 "nothing was sent; take the file from where it was made"});
}

}  // namespace

VerbResult DownloadProject(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
                           const DownloadFlags& flags) {
  const auto project = ReadProjectFile(file);
  if (!project) return std::unexpected(project.error());
  const auto backup = TerminalBackup::Prepare(environment, common, flags);
  if (!backup) return std::unexpected(backup.error());
  const auto controller = ConnectedController::Open(environment, common, ConnectedController::Reaching::AtAnySpeed);
  if (!controller) return std::unexpected(controller.error());

  TerminalDownload window(environment, common, flags.consents, flags.isDryRun);
  ProjectDownload engine(window, window, environment.pacer);
  DownloadPreview preview;
  DownloadOrder order;
  order.link = (*controller)->Description();
  order.selectedModel = (*controller)->SelectedModel();
  order.isDryRun = flags.isDryRun;
  order.backup = (*backup)->Backup();
  order.promptsOf = [&](DownloadQuestion question) -> Prompts& { return window.PromptsOf(question); };
  order.asksBeforeStop = environment.input.IsInteractive();
  order.onPreview = [&](const DownloadPreview& shown) {
    preview = shown;
    environment.err << PreviewText(shown) << std::flush;
  };
  engine.Download((*controller)->Link(), *project, order);
  (*backup)->TellWarnings(environment);
  const DownloadOutcome& outcome = engine.Outcome();
  if (outcome.end != DownloadEnd::Done && outcome.end != DownloadEnd::WouldGoOn) {
    return std::unexpected(DownloadFailure("downloading " + Utf8FromPath(file), outcome, window));
  }
  VerbOutput output = ReportOf(preview, engine.Review(), flags.isDryRun);
  output.document["file"] = Utf8FromPath(file);
  if (outcome.left == ControllerLeft::ProjectWaits) output.text += std::string(LeftBehindText(outcome.left)) + "\n";
  return output;
}

}  // namespace kv::cli
