#include <QCheckBox>
#include <QLabel>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/CloneInfo.h"
#include "clone/ErasedSegments.h"
#include "clone/ManifestCheck.h"
#include "clone/RestoreBegin.h"
#include "clone/RestoreCheck.h"
#include "clone/ui/DumpList.h"
#include "clone/ui/frmDumpPLC.h"
#include "link/ControllerErrorText.h"

// What the cloner's window checks, asks and tells around a restore.
namespace kv {
namespace {

constexpr const char* kNotReadBack =
    "A restore is not read back by itself. Verify compares the controller with the file.";
constexpr const char* kNotRestored = "The clone file was not restored; the controller is as it was.";
constexpr const char* kNothingSent = "Nothing was sent, the controller is as it was.";
constexpr const char* kLineEnd = "\r\n";

std::string Lines(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences) text += sentence + kLineEnd;
  return text;
}

}  // namespace

// One restore, from the file to the last line.
struct frmDumpPLC::Restoring {
  Channel& link;
  std::filesystem::path file;
  CloneInfo info = {};
  ManifestReport manifest = {};
  RestoreCheck check = {};
  std::vector<CloneSegment> erase = {};
  std::optional<OperationScope> operation = {};  // from the first command that changes the controller
};

void frmDumpPLC::RestoreInto(Channel& link, const std::filesystem::path& file) {
  Restoring restoring{.link = link, .file = file};
  using Step = bool (frmDumpPLC::*)(Restoring&);
  constexpr Step kSteps[] = {
      &frmDumpPLC::Inspect,          &frmDumpPLC::ChooseUnit,  &frmDumpPLC::Check,   &frmDumpPLC::IsWantedDespite,
      &frmDumpPLC::ConsentToEndLoad, &frmDumpPLC::ChooseErase, &frmDumpPLC::Consent, &frmDumpPLC::SaveFirst,
      &frmDumpPLC::GiveAccess,       &frmDumpPLC::Begin};
  for (const Step step : kSteps) {
    const bool goesOn = (this->*step)(restoring);
    if (mIsStopAsked) return ShowEnd(CloneEnd::Stopped, std::string("Stopped. ") + kNotRestored);
    if (!goesOn) return;
  }
  Send(restoring);
}

// The settled box of every failure, and why; false, for the steps.
bool frmDumpPLC::FailRestore(const std::string& reason) {
  if (mIsStopAsked) return false;
  const std::string text = "Restoring the clone file has failed.\n" + reason + "\n" + kNothingSent;
  mServices.shared.Remote->StatusMessage(text);
  ShowEnd(CloneEnd::Failed, text);
  mServices.prompts.Show({.text = std::string(kOperationFailed), .title = std::string(kClonerCaption)});
  return false;
}

bool frmDumpPLC::AskYes(const std::string& question) {
  return mServices.prompts.Show({.text = question,
                                 .title = std::string(kClonerCaption),
                                 .icon = PromptIcon::Exclamation,
                                 .buttons = PromptButtons::YesNo,
                                 .canLose = true}) == PromptAnswer::Yes;
}

bool frmDumpPLC::Inspect(Restoring& restoring) {
  const CloneWork work = Watched();
  auto info = InspectClone(restoring.file, work);
  if (!info) return FailRestore(info.error().reason);
  restoring.info = *std::move(info);
  restoring.manifest = CheckManifest(restoring.file, restoring.info, work);
  const CloneInfo& found = restoring.info;
  if (found.head) Say(Utf8FromPath(restoring.file.filename()) + ": " + HeadText(*found.head) + ".");
  if (found.IsSound()) Say(WholenessText(found, restoring.manifest));
  return true;
}

// A spare part often has another unit id than the controller that it takes the place of.
bool frmDumpPLC::ChooseUnit(Restoring& restoring) {
  const std::uint8_t unit = restoring.link.UnitID();
  const std::string other = OtherUnitText(restoring.info, unit);
  if (other.empty() || AskYes(other + kLineEnd + kLineEnd + "Send its lines for unit " + std::to_string(unit) +
                              "? The file stays as it is.")) {
    return true;
  }
  ShowEnd(CloneEnd::Stopped, kNotRestored);
  return false;
}

bool frmDumpPLC::Check(Restoring& restoring) {
  if (!Identify(restoring.link)) {
    return FailRestore("The controller did not tell who it is.\n" + restoring.link.LastError().Text());
  }
  mProgressText->setText("Holding the file against the controller");
  auto check = CheckBeforeRestore(restoring.link, restoring.info, restoring.manifest, Watched());
  if (!check) return FailRestore(check.error().reason);
  restoring.check = *std::move(check);
  for (const std::string& obstacle : restoring.check.obstacles) Say("Warning: " + obstacle);
  for (const std::string& warning : restoring.check.warnings) Say("Note: " + warning);
  return true;
}

// The information that the engine shows has no button but OK, so who does not want it must be able to say so before.
bool frmDumpPLC::IsWantedDespite(Restoring& restoring) {
  const std::vector<std::string>& obstacles = restoring.check.obstacles;
  if (obstacles.empty() || AskYes(Lines(obstacles) + kLineEnd + "Restore it all the same?")) return true;
  ShowEnd(CloneEnd::Stopped, kNotRestored);
  return false;
}

bool frmDumpPLC::ConsentToEndLoad(Restoring& restoring) {
  if (!restoring.check.IsLoading() || AskYes(EndLoadQuestion(mController))) return true;
  ShowEnd(CloneEnd::Stopped, kNotRestored);
  return false;
}

bool frmDumpPLC::ChooseErase(Restoring& restoring) {
  const std::vector<CloneSegment>& staying = restoring.check.staying;
  if (staying.empty()) return true;
  const std::string codes = CodesText(staying);
  if (AskYes(StayText(staying) + kLineEnd + kLineEnd + "Erase " + codes + " in the controller, too?")) {
    restoring.erase = staying;
  } else {
    Say("Note: " + codes + " will stay as the controller has it, and differ from the clone.");
  }
  return true;
}

bool frmDumpPLC::Consent(Restoring& restoring) {
  const std::string kept = mSaveFirst->isChecked()
                               ? "What it holds now is kept in a clone file first."
                               : "What it holds now is lost; answer No and check \"Save first what a restore is about "
                                 "to overwrite\" to keep it.";
  if (AskYes(RestoreQuestion(restoring.check, restoring.info, restoring.file, mController, kept))) return true;
  ShowEnd(CloneEnd::Stopped, kNotRestored);
  return false;
}

// The clone of what is overwritten takes all segments: what cannot be told now is which of them will be missed.
bool frmDumpPLC::SaveFirst(Restoring& restoring) {
  if (!mSaveFirst->isChecked()) return true;
  const auto chosen = AskForNewFile("Save What The Controller Holds Now");
  if (!chosen) {
    ShowEnd(CloneEnd::Stopped, kNotRestored);
    return false;
  }
  if (IsSameFile(PathFromUtf8(*chosen), restoring.file)) {
    return FailRestore(
        "What the controller holds would overwrite the clone file that is to be restored. Choose "
        "another name for it.");
  }
  SafeCreate safe(PathFromUtf8(*chosen));
  mTakesAll = true;
  const bool isSaved = CreateFrom(restoring.link, safe, "Saving what the controller holds");
  mTakesAll = false;
  mRows->BeginCommands();
  BeginEngine();
  if (!isSaved) Say(kNotRestored);
  return isSaved;
}

// The lines of a restore cannot carry the password, so a controller that wants one gets it before the first of them.
bool frmDumpPLC::GiveAccess(Restoring& restoring) {
  Channel& link = restoring.link;
  if (link.EnsureAccess(link.UnitID())) return true;
  if (mIsStopAsked) return false;
  const bool isDeclined = link.LastError().controllerCode == kNeedsPasswordCode;
  if (!isDeclined) return FailRestore(link.LastError().Text());
  ShowEnd(CloneEnd::Stopped, kNotRestored);
  return false;
}

bool frmDumpPLC::Begin(Restoring& restoring) {
  if (restoring.link.GetSerialPort() == nullptr) return FailRestore(restoring.link.LastError().Text());
  restoring.operation.emplace(restoring.link.Changes(), RestoreOperation(restoring.file));
  const auto begun = BeginRestore(restoring.link, restoring.check.controller, restoring.erase);
  if (begun) return true;
  const std::string text = "Restoring the clone file has failed.\n" + begun.error().reason;
  mServices.shared.Remote->StatusMessage(text);
  ShowEnd(begun.error().end, text);
  mServices.prompts.Show({.text = std::string(kOperationFailed), .title = std::string(kClonerCaption)});
  return false;
}

void frmDumpPLC::Send(Restoring& restoring) {
  mEngine->UseUnit(restoring.link.UnitID());  // of a damaged file, too, nothing goes to another one
  mEngine->ExpectDigest(restoring.info.sha256);
  mEngine->RestoreGhost(*restoring.link.GetSerialPort(), restoring.file, &restoring.link);
  CloneOutcome outcome = mEngine->Outcome();
  mProgressText->setText("Asking the controller what it is doing now");
  if (outcome.end == CloneEnd::Done) {
    const auto checked = CheckAfterRestore(mEngine->Reach(), restoring.link, restoring.check.controller);
    if (!checked) outcome = checked.error();
    restoring.operation->End(ChangeEndOf(outcome));
  } else {
    restoring.operation->End(ChangeEndOf(outcome));
    const std::string left = AskWhatIsLeft(mEngine->Reach(), restoring.link, mServices.pacer);
    if (!left.empty()) outcome.reason += "\n" + left;
  }
  ShowOutcome("Restoring the clone file", outcome, restoring.file);
  if (outcome.end == CloneEnd::Done) Say(kNotReadBack);
}

}  // namespace kv
