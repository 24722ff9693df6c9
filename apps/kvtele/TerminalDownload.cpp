#include "apps/kvtele/TerminalDownload.h"

#include "download/BiosWarning.h"

namespace kv::cli {

namespace {

ConsoleAnswers AnswersFor(const CommonOptions& common, bool isDryRun, bool yes, const char* flag) {
  ConsoleAnswers answers;
  answers.yes = yes || isDryRun;
  answers.yesFlag = isDryRun ? "--dry-run" : flag;
  answers.password = common.password;
  return answers;
}

}  // namespace

TerminalDownload::TerminalDownload(Environment& environment, const CommonOptions& common, const ConsentFlags& consents,
                                   bool isDryRun)
    : TerminalPrompts(environment, AnswersFor(common, isDryRun, common.yes, "--yes")),
      mEnvironment(environment),
      mCommon(common),
      mIsDryRun(isDryRun),
      mConsents(consents),
      mProgress(environment.pacer) {}

ConsolePrompts TerminalDownload::Answered(bool yes, const char* flag) const {
  return {AnswersFor(mCommon, mIsDryRun, yes, flag), mEnvironment.err, mEnvironment.input};
}

PromptAnswer TerminalDownload::Show(const MessageBox& box) {
  if (box.buttons == PromptButtons::Ok) std::erase(mTold.emplace_back(box.text), '\r');
  return TerminalPrompts::Show(box);
}

std::string TerminalDownload::WithoutTold(std::string text) const {
  for (const std::string& told : mTold) {
    const std::size_t at = text.find(told);
    if (at == std::string::npos) continue;
    const std::size_t rest = text.find_first_not_of(".\n", at + told.size());
    text.erase(at, rest == std::string::npos ? rest : rest - at);
  }
  return text;
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
    case DownloadQuestion::SameOs:
      return mQuestion.emplace(Answered(mConsents.sameOs, "--same-os"));
    case DownloadQuestion::LoseValues:
      return mQuestion.emplace(Answered(mConsents.loseValues, "--lose-values"));
    case DownloadQuestion::Retry:
      return mQuestion.emplace(Answered(mRetries++ < mConsents.retries, "--retry"));
    case DownloadQuestion::Stop:
      return mQuestion.emplace(Answered(false, "Ctrl-C once more"));
  }
  return *this;
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

void TerminalDownload::Note(std::string_view text) {
  mLine.Wipe();
  mEnvironment.err << text << "\n" << std::flush;
}

void TerminalDownload::AmountSent(std::uint64_t done, std::uint64_t total) {
  mProgress.AmountSent(done, total);
  if (!TakeLineTurn() && done < total) return;
  mLine.Show(mStatus + " " + mProgress.Text());
}

}  // namespace kv::cli
