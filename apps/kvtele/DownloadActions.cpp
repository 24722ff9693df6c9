#include <algorithm>
#include <array>
#include <system_error>

#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/DownloadActions.h"
#include "base/PathText.h"

namespace kv::cli {

namespace {

using Json = nlohmann::ordered_json;

// Link and Reply are named by the error of the link.
constexpr CauseRow<DownloadCause> kCauses[] = {
    {DownloadCause::NotFit, "notFit", ExitCode::Refused},    {DownloadCause::File, "badFile", ExitCode::BadFile},
    {DownloadCause::Backup, "backup", ExitCode::Failed},     {DownloadCause::Differs, "differs", ExitCode::Differs},
    {DownloadCause::Unproven, "unproven", ExitCode::Failed},
};

Json JsonOf(const DownloadSide& side) {
  const auto text = [](const std::optional<std::string>& value) { return value ? Json(*value) : Json(); };
  return {
      {"model", text(side.model)}, {"os", text(side.os)}, {"fonts", text(side.fonts)}, {"project", text(side.project)}};
}

std::string Padded(const std::string& text, std::size_t width) {
  const auto letters = static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
  return text + std::string(width > letters ? width - letters : 1, ' ');
}

std::string TableOf(const DownloadSide& first, const DownloadSide& second, const char* firstHead,
                    const char* secondHead) {
  constexpr std::size_t kLabel = 14;
  constexpr std::size_t kColumn = 28;
  std::string text = Padded("", kLabel) + Padded(firstHead, kColumn) + secondHead + "\n";
  for (const SideRow& row : RowsOf(first, second)) {
    text += Padded(row.label, kLabel) + Padded(row.first, kColumn) + row.second + "\n";
  }
  return text;
}

// The options that the way out needs.
std::string OptionsFor(ControllerLeft left) {
  using enum ControllerLeft;
  constexpr ControllerLeft kLoading[] = {ProjectBegun, ProjectErased, ProjectUnproven,
                                         Programming,  FlashFailed,   ProjectWaits};
  if (left == NewOsLoading) return "kvtele clone restore FILE.kdf wants --end-load while the controller is loading";
  if (std::ranges::find(kLoading, left) == std::end(kLoading)) return {};
  return "a download wants --end-load, too, while the controller is loading";
}

// One rule for all: a file that cannot be used is BadFile, and what a dry run would not get past is Refused.
Failure FailureOf(std::string doing, const DownloadOutcome& outcome, bool isDryRun) {
  const std::string text = OutcomeText(outcome);
  if (outcome.end == DownloadEnd::Stopped) {
    return {ExitCode::Interrupted, "interrupted", std::move(doing), text, {}, {}};
  }
  if (outcome.end == DownloadEnd::Declined && outcome.link.code == LinkErrorCode::None) {
    return {isDryRun ? ExitCode::Refused : ExitCode::Failed, "notConfirmed", std::move(doing), text, {}, {}};
  }
  const auto* row = RowOf<DownloadCause>(kCauses, outcome.cause);
  const bool isRefused = outcome.end == DownloadEnd::Refused;
  // Who never came back, or came back as another one, is no difference between file and controller.
  const bool isUnheard = outcome.cause == DownloadCause::Unproven && outcome.link.code != LinkErrorCode::None;
  if (row != nullptr && !isUnheard && outcome.link.code != LinkErrorCode::OtherController) {
    const ExitCode exit = isRefused && row->exit != ExitCode::BadFile ? ExitCode::Refused : row->exit;
    return {exit, std::string(row->name), std::move(doing), text, {}, {}};
  }
  Failure failure = LinkFailure(outcome.link, true);
  failure.doing = std::move(doing);
  failure.happened = text;
  failure.cause.clear();  // stands in the text
  failure.cure.clear();
  if (outcome.link.code == LinkErrorCode::None) failure.code = "badReply";
  return failure;
}

}  // namespace

std::string PreviewText(const DownloadPreview& preview) {
  std::string text = "Controller: " + preview.controller + "\n" +
                     TableOf(preview.now, preview.then, "in the controller", "in the file");
  text += "To send: " + AmountText(preview) + ".\n";
  for (const std::string& loss : preview.losses) text += loss + "\n";
  for (const std::string& warning : preview.warnings) text += "Warning: " + warning + "\n";
  return text;
}

VerbOutput ReportOf(const DownloadPreview& preview, const std::optional<DownloadReview>& review, bool isDryRun) {
  VerbOutput output;
  output.document = {{"dryRun", isDryRun},
                     {"controller", preview.controller},
                     {"before", JsonOf(preview.now)},
                     {"inFile", JsonOf(preview.then)},
                     {"bytes", preview.bytes},
                     {"seconds", std::chrono::duration<double>(preview.about).count()},
                     {"clones", preview.clones},
                     {"losses", preview.losses},
                     {"warnings", preview.warnings}};
  if (isDryRun) {
    output.text = "The download would go on now. Nothing was changed in the controller.\n";
    return output;
  }
  if (!review) return output;
  output.document["after"] = JsonOf(review->after);
  output.text = TableOf(review->before, review->after, "before", "after");
  return output;
}

Failure DownloadFailure(std::string doing, const DownloadOutcome& outcome, const TerminalDownload& window) {
  Failure failure = FailureOf(std::move(doing), outcome, window.IsDryRun());
  failure.cure = OptionsFor(outcome.left);
  failure.untold = window.WithoutTold(failure.happened);
  return failure;
}

TerminalBackup::TerminalBackup(Environment& environment, const CommonOptions& common, const DownloadFlags& flags)
    : mWindow(environment, common, flags.backupOrder.segments, flags.backupOrder.mayStop),
      mQuestions(PromptsFor(environment, common)),
      mWork(environment) {
  if (!flags.backup) return;
  mBackup.emplace(*flags.backup, BackupContext{mWindow, mWindow, mQuestions, environment.pacer, mClock, mWork.Work()});
}

OrFailure<std::unique_ptr<TerminalBackup>> TerminalBackup::Prepare(Environment& environment,
                                                                   const CommonOptions& common,
                                                                   const DownloadFlags& flags) {
  std::unique_ptr<TerminalBackup> backup(new TerminalBackup(environment, common, flags));
  if (!flags.backup) return backup;
  // The backup keeps what stood there when it was made: before the question whether that may be replaced.
  CreateOrder order = flags.backupOrder;
  order.isDryRun = flags.isDryRun;
  const auto checked = CheckCreate(environment, common, *flags.backup, order);
  if (!checked) return std::unexpected(checked.error());
  return backup;
}

void TerminalBackup::TellWarnings(Environment& environment) const {
  if (!mBackup) return;
  for (const std::string& warning : mBackup->Warnings()) environment.err << "Warning: " << warning << "\n";
}

}  // namespace kv::cli
