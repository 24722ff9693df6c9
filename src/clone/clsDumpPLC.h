#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clone/AppendFile.h"
#include "clone/CloneFile.h"
#include "clone/CloneManifest.h"
#include "clone/CloneOutcome.h"
#include "clone/CloneSegment.h"
#include "clone/DumpWindow.h"
#include "clone/RestoreReach.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "digest/Sha256.h"
#include "link/Channel.h"

namespace kv {

// Title of every box of the cloner, and caption of its window.
inline constexpr std::string_view kClonerCaption = "Korvantis PLC Cloner";
// What every failed operation of it says; the reason stands elsewhere.
inline constexpr std::string_view kOperationFailed = "Operation Failed.";

// O/S versions from this one on can be cloned, when they are reported in plain digits.
inline constexpr int kFirstOsWithClones = 460;

// Ends the reason of a create that has left the program stopped.
inline constexpr std::string_view kLeftStopped =
    "The controller's program was stopped for this clone and was not started again from here: unless the controller "
    "has "
    "restarted meanwhile, it stands still. It starts with \"kvtele run\", when a clone is created again, or when the "
    "controller is switched off and on.";

// Copies the memory of a controller into a clone file, and a clone file into a controller.
//
//   idle -> creating  -> done
//        -> restoring -> done
//
// One instance serves one operation. Both operations tell the user themselves how they ended, in boxes of settled
// text; Outcome() holds what the boxes do not say. What file and controller are left as when the work is cut at each
// step: docs/cloning.md.
class clsDumpPLC {
 public:
  clsDumpPLC(DumpWindow& window, Prompts& prompts, Pacer& pacer, const WallClock& clock)
      : mWindow(window), mPrompts(prompts), mPacer(pacer), mClock(clock) {}
  clsDumpPLC(const clsDumpPLC&) = delete;
  clsDumpPLC& operator=(const clsDumpPLC&) = delete;

  // Reads the connected controller into `file`. A file of that name is deleted first, whatever comes then; SafeCreate
  // keeps it. `finish` is called when the file is closed and safe on the disk, before success is told: its failure is
  // that of the create, and what then becomes of the file is its own business.
  using Finish = std::function<std::expected<void, CloneOutcome>()>;
  void CreateGhost(Channel& link, const std::filesystem::path& file, const Finish& finish = {});

  // Sends the command lines of `file` on the port and waits for the reply to each. `link`, the channel over the port,
  // is only asked for its last error, for the reason of a failure; it may be null.
  void RestoreGhost(SerialPortObject& port, const std::filesystem::path& file, const Channel* link = nullptr);

  // Of a create: whose memory it is (ControllerText, RestoreCheck.h), for the box of the password.
  void NameController(std::string text) { mControllerName = std::move(text); }

  // Of a create: a controller with too old an O/S is cloned all the same. For memory that is written back soon, into
  // the same controller; what that leaves out of account is the caller's business.
  void TakeAnyOs() { mTakesAnyOs = true; }

  // Of a create that is written back later: where the program may not be stopped for it, it ends. Else it is then made
  // of a memory that changes.
  void EndUnlessStopped() { mEndsUnlessStopped = true; }

  // Of a restore: the lines are sent for this unit instead of the one that they were made for. The file stays as it is.
  void UseUnit(std::uint8_t unit) { mUnit = unit; }

  // Of a restore: SHA-256 of the file as it was looked through. Nothing is sent of a file that has become another one.
  void ExpectDigest(std::string sha256) { mExpected = std::move(sha256); }

  // Asks the running operation to end; it notices after the block, the segment or the line that it is busy with, as it
  // does a stop that was asked of the pacer. Never taken back.
  void StopDump() { mIsStopped = true; }

  // How the operation ended; Done before there was one.
  [[nodiscard]] const CloneOutcome& Outcome() const { return mOutcome; }
  // How far a restore came.
  [[nodiscard]] const RestoreReach& Reach() const { return mReach; }

  // Of a create that went through: digests of the bytes that were read and written, and how it was made. Serial number,
  // project, user and comment are for the caller to fill in.
  [[nodiscard]] const CloneManifest& Manifest() const { return mManifest; }

  // Of a create: segments of the controller that no clone file takes, whatever the boxes say.
  [[nodiscard]] const std::vector<CloneSegment>& NeverTaken() const { return mNeverTaken; }

  // Whether somebody started the program that was stopped for a create, before the create did.
  [[nodiscard]] bool WasStartedMeanwhile() const { return mWasStartedMeanwhile; }

  // Whether a create that ended otherwise has left the program stopped, as far as is known.
  [[nodiscard]] bool HasStoppedProgram() const { return mHasStoppedProgram; }

 private:
  using Step = std::expected<void, CloneOutcome>;
  using Segments = std::vector<CloneSegment>;

  [[nodiscard]] Step Create(Channel& link, const std::filesystem::path& file, const Finish& finish);
  [[nodiscard]] std::expected<VersionInfo, CloneOutcome> SupportsCloning(Channel& link);
  [[nodiscard]] std::expected<Segments, CloneOutcome> ReadSegmentTable(Channel& link);
  [[nodiscard]] std::expected<bool, CloneOutcome> IsRunning(Channel& link);
  [[nodiscard]] Step StopProgram(Channel& link);
  [[nodiscard]] Step WriteHead(const VersionInfo& version, const Segments& segments, const SegmentBoxes& boxes);
  [[nodiscard]] Step DumpSegments(Channel& link, const Segments& segments, const SegmentBoxes& boxes);
  [[nodiscard]] Step DumpSegment(Channel& link, const CloneSegment& segment);
  [[nodiscard]] Step DumpBlock(Channel& link, const CloneSegment& segment, std::uint32_t offset, std::uint32_t count);
  [[nodiscard]] Step LeaveRunning(Channel& link);
  [[nodiscard]] Step WriteLine(std::string_view line);

  [[nodiscard]] Step Restore(SerialPortObject& port, const std::filesystem::path& file);
  // Shows the head; the number of command lines.
  [[nodiscard]] std::expected<std::int64_t, CloneOutcome> ShowHead(const std::filesystem::path& file);
  [[nodiscard]] Step RestoreLines(SerialPortObject& port, CloneLineReader& lines, const Sha256& read);
  [[nodiscard]] Step CheckAllWasSent(const CloneLineReader& lines, bool hasMore, const Sha256& sent) const;
  [[nodiscard]] CloneOutcome WithoutEnd(const std::filesystem::path& file) const;
  [[nodiscard]] Step RestoreLine(SerialPortObject& port, std::string_view line, std::size_t number);
  [[nodiscard]] Step SendCloneCommand(SerialPortObject& port, std::string_view line);
  [[nodiscard]] Step WaitCloneReply(SerialPortObject& port, std::string_view line);
  void WaitTurn(SerialPortObject& port, std::string_view line, std::string& reply);
  void TakeInput(SerialPortObject& port, std::string& reply);
  [[nodiscard]] CloneOutcome PortFailure(CloneCause cause, const std::string& reason,
                                         const std::string& likely = {}) const;

  void Show(std::string_view text, PromptIcon icon);
  [[nodiscard]] bool IsStopRequested() const { return mIsStopped || mPacer.StopRequested(); }

  DumpWindow& mWindow;
  Prompts& mPrompts;
  Pacer& mPacer;
  const WallClock& mClock;
  AppendFile mFile;
  CloneOutcome mOutcome;
  CloneManifest mManifest;
  std::vector<CloneSegment> mNeverTaken;
  std::string mControllerName;
  Sha256 mSegmentDigest;  // of the segment that is being read
  bool mIsStopped = false;
  bool mTakesAnyOs = false;
  bool mEndsUnlessStopped = false;
  bool mHasStoppedProgram = false;  // and not started it again
  bool mWasStartedMeanwhile = false;

  // Of a restore.
  const Channel* mLink = nullptr;
  std::string mOldLinkError;  // what its last error was before
  RestoreReach mReach;
  std::string mLineBefore;  // the last that was answered
  std::optional<std::uint8_t> mUnit;
  std::string mExpected;  // digest of the file; empty: any
  std::string mCounted;   // its digest when its lines were counted
};

}  // namespace kv
