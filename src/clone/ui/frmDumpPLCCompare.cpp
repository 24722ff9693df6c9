#include <QComboBox>
#include <QLabel>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneDiff.h"
#include "clone/CloneVerify.h"
#include "clone/ComparisonText.h"
#include "clone/ErasedSegments.h"
#include "clone/ManifestCheck.h"
#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLCOperation.h"

// Holding clone files against the controller and against each other. Nothing is written anywhere.
namespace kv {
namespace {

// What of the controller is compared; a verdict must not be taken for one on more.
std::string WhatOf(ComparedKinds kinds, const std::vector<std::string>& codes) {
  if (kinds == ComparedKinds::All) return {};
  std::string text;
  for (const std::string& code : codes) text += (text.empty() ? "only " : ", ") + AnsiToUtf8(code);
  return text + " of ";
}

}  // namespace

void frmDumpPLC::VerifyClone() {
  EnableCommands(false);
  const auto chosen = AskForFile("Verify With Clone File");
  if (!chosen) return EnableCommands(true);
  const Operation operation(*this, ": Verify");
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) return ShowNoLink("Nothing was compared.");
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);
  const std::filesystem::path file = PathFromUtf8(*chosen);
  const bool isKnown = Identify(*link).has_value();
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);
  if (!isKnown) return ShowNoLink("The controller did not tell who it is; nothing was compared.");
  const auto info = InspectClone(file, Watched());
  const auto kinds = static_cast<ComparedKinds>(mVerified->currentIndex());
  std::vector<std::string> codes;
  if (info) {
    SayWhatIsKnown(file, *info);
    codes = CodesOf(*info, kinds);
    if (codes.empty()) return ShowEnd(CloneEnd::Failed, "Nothing was compared: the file has no segment of that kind.");
  }
  const auto comparison = kv::VerifyClone(*link, file, Watched(), codes);
  ShowComparison("Comparing " + WhatOf(kinds, codes) + "the controller (" + mController + ") with " + *chosen,
                 comparison, true);
  if (!comparison) return;
  const auto staying = SegmentsThatStayed(*comparison);
  if (!staying.empty()) Say(StayText(staying) + " A restore offers to erase it.");
}

void frmDumpPLC::CompareClones() {
  EnableCommands(false);
  const auto first = AskForFile("Compare Clone File");
  if (!first) return EnableCommands(true);
  const auto second = AskForFile("Compare With Clone File");
  if (!second) return EnableCommands(true);
  const Operation operation(*this, ": Compare");
  ShowComparison("Comparing " + *first + " with " + *second,
                 DiffClones(PathFromUtf8(*first), PathFromUtf8(*second), Watched()), false);
}

// How far the file can be trusted. Another model is no reason not to compare, but explains what is found.
void frmDumpPLC::SayWhatIsKnown(const std::filesystem::path& file, const CloneInfo& info) {
  if (!info.head) return;
  if (info.IsSound()) Say(WholenessText(info, CheckManifest(file, info, Watched())));
  if (AnsiToUtf8(info.head->version.model) == mModel) return;
  Say("Note: the clone file was made from a " + AnsiToUtf8(info.head->version.model) + ", but the controller is a " +
      mModel + ".");
}

void frmDumpPLC::ShowComparison(const std::string& what, const std::expected<CloneComparison, CloneOutcome>& comparison,
                                bool isWithController) {
  if (!comparison) {
    const bool isStopped = comparison.error().end == CloneEnd::Stopped;
    const std::string text = what + (isStopped ? " was stopped." : " has failed.\n" + comparison.error().reason);
    mServices.shared.Remote->StatusMessage(text);
    return ShowEnd(comparison.error().end, text);
  }
  mRows->ShowLines("Comparison", ComparisonLines(*comparison));
  const std::string text = what + ": " + VerdictText(*comparison, isWithController);
  mServices.shared.Remote->StatusMessage(text);
  ShowEnd(CloneEnd::Done, text);
  mProgressText->setText(comparison->IsSame() ? "The same." : "Different.");
}

}  // namespace kv
