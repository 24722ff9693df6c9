#include <QLabel>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneDiff.h"
#include "clone/CloneVerify.h"
#include "clone/ComparisonText.h"
#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLCOperation.h"

// Holding clone files against the controller and against each other. Nothing is written anywhere.
namespace kv {

void frmDumpPLC::VerifyClone() {
  EnableCommands(false);
  const auto chosen = AskForFile("Verify With Clone File");
  if (!chosen) return EnableCommands(true);
  const Operation operation(*this, ": Verify");
  const auto link = mServices.shared.ComDriver->GetChannel();
  if (!link) return ShowNoLink("Nothing was compared.");
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);
  const std::filesystem::path file = PathFromUtf8(*chosen);
  if (Identify(*link)) SayWhenOfAnotherModel(file);
  if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, kStoppedBefore);
  ShowComparison("Comparing the controller (" + mController + ") with " + *chosen,
                 kv::VerifyClone(*link, file, Watched()), true);
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

// The model is no reason not to compare, but explains what is found.
void frmDumpPLC::SayWhenOfAnotherModel(const std::filesystem::path& file) {
  const auto info = InspectClone(file, Watched());
  if (!info || !info->head || AnsiToUtf8(info->head->version.model) == mModel) return;
  Say("Note: the clone file was made from a " + AnsiToUtf8(info->head->version.model) + ", but the controller is a " +
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
