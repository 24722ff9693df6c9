#include "apps/kvtele/TerminalDownload.h"

#include "download/BiosWarning.h"

namespace kv::cli {

namespace {

constexpr Duration kBetweenLines = std::chrono::milliseconds(100);

}  // namespace

TerminalDownload::TerminalDownload(Environment& environment, const CommonOptions& common, const ConsentFlags& consents,
                                   bool isDryRun)
    : mEnvironment(environment),
      mCommon(common),
      mIsDryRun(isDryRun),
      mLine(environment),
      mConsents(consents),
      mPrompts(Answered(common.yes, "--yes")),
      mProgress(environment.pacer) {}

ConsolePrompts TerminalDownload::Answered(bool yes, const char* flag) const {
  ConsoleAnswers answers;
  answers.yes = yes || mIsDryRun;
  answers.yesFlag = mIsDryRun ? "--dry-run" : flag;
  answers.password = mCommon.password;
  return {std::move(answers), mEnvironment.err, mEnvironment.input};
}

Prompts& TerminalDownload::PromptsOf(DownloadQuestion question) {
  mLine.Wipe();
  switch (question) {
    case DownloadQuestion::Begin:
      return mQuestion.emplace(Answered(mCommon.yes, "--yes"));
    case DownloadQuestion::OtherModel:
      return mQuestion.emplace(Answered(mConsents.otherModel, "--other-model"));
    case DownloadQuestion::NoReset:
      return mQuestion.emplace(Answered(mConsents.noReset, "--no-reset"));
    case DownloadQuestion::EndLoad:
      return mQuestion.emplace(Answered(mConsents.endLoad, "--end-load"));
    case DownloadQuestion::LoseValues:
      return mQuestion.emplace(Answered(mConsents.loseValues, "--lose-values"));
    case DownloadQuestion::Retry:
      return mQuestion.emplace(Answered(mRetries++ < mConsents.retries, "--retry"));
    case DownloadQuestion::Stop:
      return mQuestion.emplace(Answered(false, "Ctrl-C once more"));
  }
  return mPrompts;
}

BiosAnswer TerminalDownload::WarnOfIncompatibleBios() {
  mLine.Wipe();
  const MessageBox box{
      .text = std::string(kBiosMightErase) + "\r\n" + std::string(kBiosSaveFirst) + "\r\n" + std::string(kBiosContinue),
      .title = std::string(kBiosWarningTitle),
      .icon = PromptIcon::Exclamation,
      .buttons = PromptButtons::YesNo,
      .canLose = true};
  const bool goesOn = Answered(mConsents.loseProject, "--lose-project").Show(box) == PromptAnswer::Yes;
  return goesOn ? BiosAnswer::Continue : BiosAnswer::Abort;
}

void TerminalDownload::SetStatus(std::string_view text) {
  mStatus = text;
  if (mStatus.empty()) return mLine.Wipe();
  mLine.Show(mStatus);
}

void TerminalDownload::AmountSent(std::uint64_t done, std::uint64_t total) {
  mProgress.AmountSent(done, total);
  if (mEnvironment.pacer.Now() < mNextLine && done < total) return;
  mNextLine = mEnvironment.pacer.Now() + kBetweenLines;
  mLine.Show(mStatus + " " + mProgress.Text());
}

PromptAnswer TerminalDownload::Show(const MessageBox& box) {
  mLine.Wipe();
  return mPrompts.Show(box);
}

std::optional<std::string> TerminalDownload::Ask(const InputBox& box) {
  mLine.Wipe();
  return mPrompts.Ask(box);
}

}  // namespace kv::cli
