#include "download/SavedMemory.h"

#include <chrono>
#include <system_error>

#include "base/DateText.h"
#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "clone/CloneCompare.h"
#include "clone/CloneManifest.h"
#include "clone/CloneVerify.h"
#include "clone/ProgramState.h"
#include "clone/RestoreReach.h"
#include "clone/SafeCreate.h"
#include "clone/clsDumpPLC.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr Duration kAfterReset = std::chrono::milliseconds(4000);

// The cloner's window, but for the box of the O/S.
class WithoutOs final : public DumpWindow {
 public:
  explicit WithoutOs(DumpWindow& window) : mWindow(window) {}

  void FillSegments(std::span<const CloneSegment> segments) override { mWindow.FillSegments(segments); }
  void Event_SegmentIndex(int index) override { mWindow.Event_SegmentIndex(index); }
  void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) override {
    mWindow.Event_ProgressBarInit(minimum, maximum);
  }
  void Event_ProgressBarValue(std::int64_t value) override { mWindow.Event_ProgressBarValue(value); }
  void Event_AddWriteCommand(std::string_view line) override { mWindow.Event_AddWriteCommand(line); }
  void Event_Refresh() override { mWindow.Event_Refresh(); }
  [[nodiscard]] SegmentBoxes CheckedSegments() const override {
    return {.op = true, .dt = true, .ap = true, .os = false};
  }

 private:
  DumpWindow& mWindow;
};

DownloadCause CauseOf(const CloneOutcome& outcome) {
  if (outcome.end == CloneEnd::Stopped) return DownloadCause::User;
  if (outcome.cause == CloneCause::Link || outcome.cause == CloneCause::Reply) return DownloadCause::Link;
  return outcome.cause == CloneCause::Unproven ? DownloadCause::Unproven : DownloadCause::Backup;
}

// Of what comes behind the new O/S.
DownloadOutcome Failure(const CloneOutcome& outcome, const std::string& what, ControllerLeft left) {
  const bool isStop = outcome.end == CloneEnd::Stopped;
  DownloadOutcome failure{.end = isStop ? DownloadEnd::Stopped : DownloadEnd::Failed,
                          .cause = CauseOf(outcome),
                          .reason = what + "\n" + outcome.reason,
                          .left = left,
                          .link = outcome.link};
  if (isStop) failure.link.code = LinkErrorCode::Stopped;
  return failure;
}

std::string DigitsOf(std::string text) {
  std::erase_if(text, [](char c) { return c < '0' || c > '9'; });
  return text;
}

}  // namespace

SavedMemory::Step SavedMemory::Save(Channel& link, const FoundController& controller,
                                    const std::string& controllerText) {
  if (!IsStartWanted(mContext.questions, controllerText, controller.info.state)) {
    return std::unexpected(DownloadOutcome{.end = DownloadEnd::Declined,
                                           .cause = DownloadCause::User,
                                           .reason = "The controller's memory was not to be saved."});
  }
  const auto file = NewFile(controller);
  if (!file) return std::unexpected(file.error());
  SafeCreate safe(*file);
  safe.SetComment("Before its O/S was replaced");
  WithoutOs window(mContext.window);
  const auto prepare = [](clsDumpPLC& engine) {
    engine.TakeAnyOs();
    engine.EndUnlessStopped();
  };
  const CloneBefore order{window,         mContext,
                          controllerText, "Its memory could not be saved, so no O/S was sent.",
                          prepare,        {[this] { return mContext.pacer.StopRequested(); }, {}}};
  const auto made = CreateBefore(safe, link, order);
  if (!made) return std::unexpected(made.error());
  mFile = *file;
  mDigest = made->sha256;
  return {};
}

// "Memory of 4711 20261122 103000.kdf": of which controller it is must be seen by who finds it.
std::expected<fs::path, DownloadOutcome> SavedMemory::NewFile(const FoundController& controller) const {
  const fs::path folder = mPaths.Temporary();
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    return std::unexpected(DownloadOutcome{.end = DownloadEnd::Failed,
                                           .cause = DownloadCause::Backup,
                                           .reason = "The folder " + Utf8FromPath(folder) +
                                                     " for its memory cannot be made: " + SystemMessage(error) + "."});
  }
  const std::chrono::local_seconds now = mContext.clock.LocalTime();
  const std::string stem = "Memory of " + std::to_string(controller.info.serialNumber) + " " + DigitsOf(DateText(now)) +
                           " " + DigitsOf(TimeOfDayText(now));
  fs::path file = folder / PathFromUtf8(stem + ".kdf");
  for (int i = 2; fs::exists(fs::symlink_status(file, error)); ++i) {
    file = folder / PathFromUtf8(stem + "-" + std::to_string(i) + ".kdf");
  }
  return file;
}

SavedMemory::Step SavedMemory::Restore(Channel& link, const FoundController& controller) {
  if (!mIsWritten) {
    mContext.pacer.Sleep(kAfterReset);
    if (Step written = WriteBack(link, controller); !written) return written;
    mIsWritten = true;
  }
  if (Step compared = Compare(link); !compared) return compared;
  if (mStays) return {};
  std::error_code ignored;
  fs::remove(mFile, ignored);
  fs::remove(ManifestPath(mFile), ignored);
  mFile.clear();
  return {};
}

std::string SavedMemory::RestoreIt() const {
  return "\nIts memory is saved in " + Utf8FromPath(mFile) + ": restore it with the cloner.";
}

SavedMemory::Step SavedMemory::WriteBack(Channel& link, const FoundController& controller) {
  const auto fail = [this](const CloneOutcome& outcome, ControllerLeft left) {
    DownloadOutcome failure =
        Failure(outcome, "The new O/S is in the controller, but its memory could not be written back.", left);
    failure.reason += RestoreIt();
    return std::unexpected(std::move(failure));
  };
  const auto begun = link.SendCommand("CCM");
  if (!begun) return fail(CloneOutcome::OfLink(link.LastError()), ControllerLeft::NewOsLoading);
  if (const auto refusal = RefusalIn(begun->text)) return fail(CloneOutcome::OfLink(*refusal), ControllerLeft::NewOs);
  SerialPortObject* port = link.GetSerialPort();
  if (port == nullptr) return fail(CloneOutcome::OfLink(link.LastError()), ControllerLeft::NewOsLoading);
  clsDumpPLC engine(mContext.window, mContext.cloner, mContext.pacer, mContext.clock);
  engine.UseUnit(link.UnitID());
  engine.ExpectDigest(mDigest);
  engine.RestoreGhost(*port, mFile, &link);
  if (engine.Outcome().end != CloneEnd::Done) return fail(engine.Outcome(), ControllerLeft::NewOsLoading);
  const auto checked = CheckAfterRestore(engine.Reach(), link, controller.info);
  if (!checked) return fail(checked.error(), ControllerLeft::NewOsLoading);
  return {};
}

// What is all back and only not compared needs no restore, which would stop the machine once more.
SavedMemory::Step SavedMemory::Compare(Channel& link) {
  const auto isHeld = IsHeldBy(link);
  if (isHeld) {
    mStays = !*isHeld;
    return {};
  }
  const bool differs = isHeld.error().cause == CloneCause::Unproven;
  DownloadOutcome failure =
      Failure(isHeld.error(),
              differs ? "The new O/S is in the controller, but its memory is not what it was."
                      : "The new O/S is in the controller, and its memory has been written back; whether all of it is "
                        "there was not found out.",
              ControllerLeft::NewOs);
  failure.reason +=
      differs ? RestoreIt()
              : "\nWhat it held before stays in " + Utf8FromPath(mFile) + ": compare that with the controller.";
  return std::unexpected(std::move(failure));
}

// Every line was answered with OK; what was done is another matter.
std::expected<bool, CloneOutcome> SavedMemory::IsHeldBy(Channel& link) {
  CloneWork work = mContext.work;
  work.isStopped = [this] { return mContext.pacer.StopRequested(); };
  const auto comparison = VerifyClone(link, mFile, work);
  if (!comparison) return std::unexpected(comparison.error());
  for (const KindVerdict& verdict : VerdictsByKind(*comparison)) {
    if (verdict.bytes == 0) continue;
    const std::string text = "All of its memory was written back, and then compared. " + verdict.Text();
    if (!verdict.isValues) return std::unexpected(CloneOutcome::Failed(CloneCause::Unproven, text));
    mContext.questions.Show({.text = text + "\r\nWhat it held before stays in " + Utf8FromPath(mFile) + ".",
                             .title = "Telepanel",
                             .icon = PromptIcon::Exclamation});
    return false;
  }
  return true;
}

}  // namespace kv
