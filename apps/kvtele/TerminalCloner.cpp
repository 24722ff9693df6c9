#include "apps/kvtele/TerminalCloner.h"

namespace kv::cli {

namespace {

ConsoleAnswers AnswersFor(const CommonOptions& common, std::optional<bool> mayStop) {
  ConsoleAnswers answers;
  answers.yes = mayStop == true;
  answers.no = mayStop == false;
  answers.yesFlag = "--stop";
  answers.noFlag = "--no-stop";
  answers.password = common.password;
  answers.passwordFlag = common.passwordFrom;
  return answers;
}

}  // namespace

TerminalCloner::TerminalCloner(Environment& environment, const CommonOptions& common, const SegmentBoxes& boxes,
                               std::optional<bool> mayStop)
    : TerminalPrompts(environment, AnswersFor(common, mayStop)), mBoxes(boxes), mProgress(environment.pacer) {}

void TerminalCloner::Event_ProgressBarValue(std::int64_t value) {
  mProgress.ProgressBarValue(value);
  if (TakeLineTurn()) mLine.Show(mProgress.Text());
}

WatchedWork::WatchedWork(Environment& environment) : mLine(environment), mProgress(environment.pacer) {
  mWork.isStopped = [&pacer = environment.pacer] { return pacer.StopRequested(); };
  mWork.onProgress = [this](std::string_view stage, std::uint64_t done, std::uint64_t total) {
    mLine.Show(mProgress.Text(stage, done, total));
  };
}

}  // namespace kv::cli
