#include "apps/kvtele/TerminalCloner.h"

namespace kv::cli {

namespace {

constexpr Duration kBetweenLines = std::chrono::milliseconds(100);

ConsoleAnswers AnswersFor(const CommonOptions& common, std::optional<bool> mayStop) {
  ConsoleAnswers answers;
  answers.yes = mayStop == true;
  answers.no = mayStop == false;
  answers.yesFlag = "--stop";
  answers.noFlag = "--no-stop";
  answers.password = common.password;
  return answers;
}

}  // namespace

TerminalCloner::TerminalCloner(Environment& environment, const CommonOptions& common, const SegmentBoxes& boxes,
                               std::optional<bool> mayStop)
    : mPacer(environment.pacer),
      mBoxes(boxes),
      mPrompts(AnswersFor(common, mayStop), environment.err, environment.input),
      mLine(environment),
      mProgress(environment.pacer) {}

void TerminalCloner::Event_ProgressBarValue(std::int64_t value) {
  mProgress.ProgressBarValue(value);
  if (mPacer.Now() < mNextLine) return;
  mNextLine = mPacer.Now() + kBetweenLines;
  mLine.Show(mProgress.Text());
}

PromptAnswer TerminalCloner::Show(const MessageBox& box) {
  mLine.Wipe();
  return mPrompts.Show(box);
}

std::optional<std::string> TerminalCloner::Ask(const InputBox& box) {
  mLine.Wipe();
  return mPrompts.Ask(box);
}

WatchedWork::WatchedWork(Environment& environment) : mLine(environment), mProgress(environment.pacer) {
  mWork.isStopped = [&pacer = environment.pacer] { return pacer.StopRequested(); };
  mWork.onProgress = [this](std::string_view stage, std::uint64_t done, std::uint64_t total) {
    mLine.Show(mProgress.Text(stage, done, total));
  };
}

}  // namespace kv::cli
