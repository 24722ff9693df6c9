#include "journal/ChangeRecorder.h"

#include <utility>

#include "base/PathText.h"
#include "base/Texts.h"
#include "desktop/UserName.h"
#include "journal/JournalHead.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::string_view kTitle = "Change Journal";

// The later in the list, the more there is to tell of it.
int Weight(ChangeResult result) {
  switch (result) {
    case ChangeResult::Done:
      return 0;
    case ChangeResult::Sent:
      return 1;
    case ChangeResult::Stopped:
      return 2;
    case ChangeResult::Refused:
      return 3;
    case ChangeResult::Failed:
      return 4;
  }
  return 4;
}

}  // namespace

ChangeRecorder::ChangeRecorder(RecorderParts parts) : mParts(std::move(parts)), mSystemUser(UserName()) {}

// Of several requests some may have been executed before one was refused.
ChangeEnd ChangeRecorder::Current::End() const {
  ChangeEnd end = worst.value_or(ChangeEnd{});
  if (end.result == ChangeResult::Refused && executed > 0) end.result = ChangeResult::Failed;
  return end;
}

// Of an operation that did not get through: which part of it the controller has.
std::string ChangeRecorder::Current::HowFar() const {
  if (requests < 2) return "";
  const std::string all = Counted(requests, "request");
  if (done == 0) return "the last of " + all + ": " + last;
  return std::to_string(done) + " of " + all + " done, the last of these: " + lastDone + "; the last sent: " + last;
}

// Another session has a journal of its own.
ChangeJournal& ChangeRecorder::Journal() {
  const std::filesystem::path folder = SessionFolder(mParts.shared);
  if (!mJournal || mJournal->Places().folder != folder) {
    const JournalPlaces places{folder, mParts.stateFolder};
    mJournal = std::make_unique<ChangeJournal>(places, mParts.disk, mParts.pacer, mParts.clock);
    mPassed.emplace(HeadFile(places));
    mIsWriting = false;
  }
  return *mJournal;
}

void ChangeRecorder::BeginOperation(const Operation& operation) {
  if (mDepth++ > 0) return;
  mCurrent = Current{};
  mCurrent->operation = operation;
  CheckJournal(*mCurrent);
  if (!mCurrent->refusal) AskReason(*mCurrent);
}

// A question belongs before the first request: a request that waits for a person has missed its time.
void ChangeRecorder::CheckJournal(Current& current) {
  ChangeJournal& journal = Journal();
  if (mIsWriting) return;
  const auto prepared = journal.Prepare();
  if (prepared || mMayPass) return;
  const PromptAnswer answer = mParts.prompts.Show(
      {.text = "The change journal of the session cannot be written.\r\n\r\n" + prepared.error().Text() +
               ".\r\n\r\nWhat is changed in controllers until the program ends would not be "
               "recorded. Change them all the same?",
       .title = std::string(kTitle),
       .icon = PromptIcon::Exclamation,
       .buttons = PromptButtons::YesNo,
       .canLose = true});
  mMayPass = answer == PromptAnswer::Yes;
  if (!mMayPass) current.refusal = Refusal(prepared.error());
}

bool ChangeRecorder::AsksReason() const {
  return ReadSessionIni(mParts.shared, kAskReasonKey, "0") == "1";
}

void ChangeRecorder::AskReason(Current& current) {
  current.reason = mReason;
  if (!current.reason.empty() || !AsksReason()) return;
  const auto reason =
      mParts.prompts.Ask({.text = "Why? This session records a reason with each change of a controller.\r\n\r\n" +
                                  current.operation.tool + ": " + current.operation.what,
                          .title = std::string(kTitle)});
  current.reason = std::string(TrimBlanks(reason.value_or("")));
  if (!current.reason.empty()) return;
  current.refusal = LinkError{.code = LinkErrorCode::NotRecorded,
                              .doing = {},
                              .happened = "no reason was given",
                              .cause = "this session asks for one before a controller is changed",
                              .cure = "do it again, and say why; nothing was sent",
                              .isNotExecuted = true};
}

std::expected<void, LinkError> ChangeRecorder::BeforeRequest(const ChangeRequest& request) {
  // A request that no tool has named is an operation of its own.
  if (!mCurrent) {
    mCurrent = Current{};
    mCurrent->operation.what = request.meaning;
    mCurrent->reason = mReason;
  }
  Current& current = *mCurrent;
  std::expected<void, LinkError> begun;
  if (current.refusal) {
    begun = std::unexpected(*current.refusal);
  } else if (!current.isBegun) {
    begun = Begin(current, request);
  }
  if (begun) {
    ++current.requests;
    current.last = request.meaning;
  } else if (mDepth == 0) {
    mCurrent.reset();
  }
  return begun;
}

std::expected<void, LinkError> ChangeRecorder::Begin(Current& current, const ChangeRequest& request) {
  JournalRecord record{.kind = RecordKind::Begin};
  record.user = User();
  record.controller = request.controller;
  record.link = request.link;
  record.tool = current.operation.tool;
  record.what = current.operation.what;
  record.operands = std::move(current.operation.operands);  // nobody needs them behind the record
  record.reason = current.reason;
  const auto number = Journal().Append(std::move(record));
  mIsWriting = number.has_value();
  current.isBegun = number || mMayPass;
  if (number) {
    current.number = *number;
    mHasRecorded = true;
    RecordUnrecorded();
    TellHeadTrouble();
    return {};
  }
  if (mMayPass) {
    LetPass(current);
    return {};
  }
  current.refusal = Refusal(number.error());
  return std::unexpected(*current.refusal);
}

void ChangeRecorder::RecordUnrecorded() {
  const std::uint64_t passed = mPassed->Count();
  if (passed == 0) return;
  JournalRecord record{.kind = RecordKind::Unrecorded, .count = passed};
  record.detail = Counted(passed, "operation") +
                  " before this one changed controllers without a record: the journal "
                  "could not be written, and the user let " +
                  (passed == 1 ? "it" : "them") + " pass.";
  if (Journal().Append(std::move(record))) mPassed->Clear();
}

void ChangeRecorder::LetPass(const Current& current) {
  mPassed->Add();
  mParts.tell("Not recorded in the change journal, which cannot be written: " + current.operation.what + ".");
}

void ChangeRecorder::AfterRequest(const ChangeEnd& end) {
  if (!mCurrent) return;
  if (!mCurrent->worst || Weight(end.result) > Weight(mCurrent->worst->result)) mCurrent->worst = end;
  mCurrent->executed += end.result != ChangeResult::Refused ? 1 : 0;
  if (end.result == ChangeResult::Done) {
    ++mCurrent->done;
    mCurrent->lastDone = mCurrent->last;
  }
  if (mDepth > 0) return;
  const Current ended = *std::exchange(mCurrent, std::nullopt);
  RecordEnd(ended, end);
}

void ChangeRecorder::EndOperation(const std::optional<ChangeEnd>& end) {
  if (mDepth == 0 || --mDepth > 0 || !mCurrent) return;
  const Current ended = *std::exchange(mCurrent, std::nullopt);
  RecordEnd(ended, end ? *end : ended.End());
}

void ChangeRecorder::RecordEnd(const Current& current, const ChangeEnd& end) {
  if (current.number == 0) return;
  JournalRecord record{.kind = RecordKind::End, .of = current.number};
  record.result = ResultWord(end.result);
  record.detail = end.detail;
  const std::string howFar = end.result == ChangeResult::Done ? "" : current.HowFar();
  if (!howFar.empty()) record.detail += (end.detail.empty() ? "" : "; ") + howFar;
  record.count = current.requests;
  auto number = Journal().Append(record);
  if (!number) number = Journal().Append(std::move(record));  // in another file
  mIsWriting = number.has_value();
  if (!number) {
    mParts.tell(
        "The end of record " + std::to_string(current.number) +
        " could not be written to the change journal, which shows it as begun and not ended: " + number.error().Text());
  }
  TellHeadTrouble();
}

// Once: the records themselves are safe.
void ChangeRecorder::TellHeadTrouble() {
  const std::string& trouble = mJournal->HeadTrouble();
  if (trouble.empty() || std::exchange(mHasToldHeadTrouble, true)) return;
  mParts.tell(trouble);
}

std::string ChangeRecorder::Head() const {
  const auto head = mJournal ? mJournal->Head() : std::nullopt;
  return head ? HeadText(head->number, head->hash) : "";
}

LinkError ChangeRecorder::Refusal(const FileError& why) const {
  return {.code = LinkErrorCode::NotRecorded,
          .doing = {},
          .happened = "the change could not be recorded, so it was not sent: " + why.Text(),
          .cause = "the disk is full, or the session's folder is write-protected or out of reach",
          .cure = "make at least " + std::to_string(kLeastJournalRoom) +
                  " KiB free on the disk, or give this user the rights to write in the session's folder and to the "
                  "files Changes.* in it; " +
                  mParts.cure,
          .isNotExecuted = true};
}

// Who is logged in; else the name with which the system knows the user.
std::string ChangeRecorder::User() const {
  return mParts.shared.UserName.empty() ? mSystemUser : mParts.shared.UserName;
}

}  // namespace kv
