#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "host/shared/SharedState.h"
#include "journal/ChangeJournal.h"
#include "journal/PassedChanges.h"
#include "link/ChangeObserver.h"

namespace kv {

// What a recorder is given; all outlive it.
struct RecorderParts {
  const SharedState& shared;  // which session, and who is logged in
  std::filesystem::path stateFolder;
  JournalDisk& disk;
  Prompts& prompts;
  Pacer& pacer;
  const WallClock& clock;
  std::function<void(const std::string& message)> tell;  // what goes wrong beside an operation that goes on
  std::string cure;                                      // what lets changes pass that cannot be recorded
};

// Records the changes of controllers in the journal of the current session: a record before the first request of an
// operation goes out, and one when it has ended.
//
//   no operation -> named (BeginOperation) -> begun (its first request) -> ended
//   no operation -> begun (a request of its own) -> ended with it
//
// Where the journal cannot be written the change is refused before it is sent, unless the user says otherwise for this
// session: he is asked when the next operation begins. What passes so is told at once, and counted until the journal
// can tell it.
class ChangeRecorder final : public ChangeObserver {
 public:
  explicit ChangeRecorder(RecorderParts parts);

  // Changes may pass where they cannot be recorded, without a question.
  void LetPassUnrecorded() { mMayPass = true; }
  // The reason that is recorded with each operation, where the user has given one beforehand.
  void UseReason(std::string reason) { mReason = std::move(reason); }

  void BeginOperation(const Operation& operation) override;
  void EndOperation(const std::optional<ChangeEnd>& end) override;
  [[nodiscard]] std::expected<void, LinkError> BeforeRequest(const ChangeRequest& request) override;
  void AfterRequest(const ChangeEnd& end) override;
  [[nodiscard]] std::string Head() const override;

  // Whether anything was recorded here.
  [[nodiscard]] bool HasRecorded() const { return mHasRecorded; }

 private:
  // The operation under way.
  struct Current {
    Operation operation;
    std::string reason;
    std::optional<LinkError> refusal;  // nothing of it may be sent
    bool isBegun = false;              // its record is written, or lets it pass without one
    std::uint64_t number = 0;          // of that record; 0: there is none
    std::uint64_t requests = 0;
    std::string last;                // of them: its meaning
    std::uint64_t executed = 0;      // of them, or may have been
    std::uint64_t done = 0;          // of those, as is known
    std::string lastDone;            // of those: its meaning
    std::optional<ChangeEnd> worst;  // of its requests

    [[nodiscard]] ChangeEnd End() const;
    [[nodiscard]] std::string HowFar() const;
  };

  [[nodiscard]] ChangeJournal& Journal();
  [[nodiscard]] bool AsksReason() const;
  void AskReason(Current& current);
  void CheckJournal(Current& current);
  [[nodiscard]] std::expected<void, LinkError> Begin(Current& current, const ChangeRequest& request);
  void RecordEnd(const Current& current, const ChangeEnd& end);
  void RecordUnrecorded();
  void LetPass(const Current& current);
  void TellHeadTrouble();
  [[nodiscard]] LinkError Refusal(const FileError& why) const;
  [[nodiscard]] std::string User() const;

  RecorderParts mParts;
  std::string mSystemUser;
  std::unique_ptr<ChangeJournal> mJournal;
  std::optional<PassedChanges> mPassed;  // of the same session
  std::optional<Current> mCurrent;
  int mDepth = 0;           // of operations
  bool mIsWriting = false;  // the last record was written, so the next can probably be
  bool mMayPass = false;
  bool mHasRecorded = false;
  bool mHasToldHeadTrouble = false;
  std::string mReason;
};

}  // namespace kv
