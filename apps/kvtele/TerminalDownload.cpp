#include "apps/kvtele/TerminalDownload.h"

#include <sstream>
#include <vector>

#include "download/BiosWarning.h"

namespace kv::cli {

namespace {

ConsoleAnswers AnswersFor(const CommonOptions& common, bool isDryRun, bool yes, const char* flag) {
  ConsoleAnswers answers;
  answers.yes = yes || isDryRun;
  answers.yesFlag = isDryRun ? "--dry-run" : flag;
  answers.password = common.password;
  answers.passwordFlag = common.passwordFrom;
  return answers;
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream all(text);
  for (std::string line; std::getline(all, line);) lines.push_back(line);
  return lines;
}

// Without what ends it: CR, and a point, which boxes go without.
std::string Bare(const std::string& line) {
  return line.substr(0, line.find_last_not_of("\r.") + 1);
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
  if (box.buttons == PromptButtons::Ok) {
    for (const std::string& line : LinesOf(box.text)) mTold.insert(Bare(line));
  }
  return TerminalPrompts::Show(box);
}

std::string TerminalDownload::WithoutTold(const std::string& text) const {
  std::string untold;
  for (const std::string& line : LinesOf(text)) {
    if (!mTold.contains(Bare(line))) untold += (untold.empty() ? "" : "\n") + line;
  }
  return untold;
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
    case DownloadQuestion::OlderOs:
      return mQuestion.emplace(Answered(mConsents.olderOs, "--older-os"));
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
