#include "journal/RecordRules.h"

#include <utility>

#include "journal/JournalTime.h"

namespace kv {
namespace {

bool IsJournalName(std::string_view text) {
  constexpr std::size_t kDigits = 32;
  return text.size() == kDigits && text.find_first_not_of("0123456789ABCDEF") == std::string_view::npos;
}

bool TellsOfBytes(const JournalRecord& record) {
  return record.count > 0 && IsJournalHash(record.hash);
}

// What it has by itself.
std::string_view FaultOfForm(const JournalRecord& record) {
  if (!ParseJournalTime(record.time)) return "its time is none";
  if (!IsJournalHash(record.previous)) return "it does not carry the hash of the record before it";
  switch (record.kind) {
    case RecordKind::Start:
    case RecordKind::Segment:
      return IsJournalName(record.journal) ? "" : "it does not name its journal";
    case RecordKind::End:
      return IsResultWord(record.result) ? "" : "its result is none that an operation can have";
    case RecordKind::Repair:
    case RecordKind::Finding:
      return TellsOfBytes(record) ? "" : "it does not tell what was found";
    case RecordKind::Unrecorded:
    case RecordKind::Acknowledged:
      return record.count > 0 ? "" : "it does not tell how many";
    case RecordKind::Begin:
      break;
  }
  return "";
}

bool IsSameEnd(const JournalRecord& one, const JournalRecord& other) {
  return one.of == other.of && one.result == other.result && one.detail == other.detail && one.count == other.count;
}

}  // namespace

void RecordRules::EndFile(std::uint64_t tornBytes, std::string tornHash) {
  mIsFurtherFile = mIsFurtherFile || mLines > 0;
  mTornBytes = tornBytes;
  mTornHash = std::move(tornHash);
}

void RecordRules::TakeUnreadable() {
  ++mLines;
  ++mLinesInFile;
  mIsWhole = false;
}

std::string_view RecordRules::Take(const JournalRecord& record) {
  ++mLines;
  ++mLinesInFile;
  const std::string_view place = FaultOfPlace(record);
  const std::string_view operation = NoteOperation(record);
  if (!record.journal.empty()) mJournal = record.journal;
  if (const std::string_view form = FaultOfForm(record); !form.empty()) return form;
  return place.empty() ? operation : place;
}

std::string_view RecordRules::FaultOfPlace(const JournalRecord& record) {
  if (record.kind == RecordKind::Start && record.number != 1) return "a journal begins with record 1 and no other";
  if (record.kind != RecordKind::Start && record.number == 1) return "record 1 is not the beginning of a journal";
  return FaultOfFile(record);
}

// A further file begins with a record that says so, and then tells of what stands at the end of the one before.
std::string_view RecordRules::FaultOfFile(const JournalRecord& record) const {
  const bool isSegment = record.kind == RecordKind::Segment;
  const bool isFirst = mLinesInFile == 1;
  if (isSegment && !isFirst) return "a file begins in the middle of another one";
  if (!mIsFurtherFile) return "";
  if (isFirst && !isSegment) return "it is the first of a further file and does not say so";
  if (isSegment && !mJournal.empty() && record.journal != mJournal) return "it belongs to another journal";
  if (mLinesInFile != 2) return "";
  const bool isRepair = record.kind == RecordKind::Repair;
  const bool fits = isRepair && record.count == mTornBytes && record.hash == mTornHash;
  if (mTornBytes > 0 && !fits) return "it does not tell of the bytes at the end of the file before";
  return isRepair && mTornBytes == 0 ? "it tells of bytes that are not at the end of the file before" : "";
}

std::string_view RecordRules::NoteOperation(const JournalRecord& record) {
  if (record.kind == RecordKind::Begin) {
    Operation* operation = Find(record.number);
    if (operation && *operation == Operation::None) *operation = Operation::Begun;
  }
  if (record.kind != RecordKind::End) return "";
  if (record.of >= record.number) return "it ends an operation that had not begun";
  Operation* operation = Find(record.of);
  const Operation before = operation ? std::exchange(*operation, Operation::Ended) : Operation::None;
  const bool isRepeated = IsSameEnd(record, std::exchange(mLastEnd, record));
  switch (before) {
    case Operation::Begun:
      return "";
    case Operation::Ended:
      // Written anew in a further file, because nobody knew whether the first was on the disk.
      return isRepeated && mIsFurtherFile ? "" : "it ends an operation that had ended";
    case Operation::None:
      break;
  }
  return mIsWhole ? "it ends an operation that had not begun" : "";
}

// Null for a number that is far from the lines that there are: a damaged one must not take memory.
RecordRules::Operation* RecordRules::Find(std::uint64_t number) {
  constexpr std::uint64_t kSlack = 1000;
  if (number > mLines + kSlack) return nullptr;
  if (number >= mOperations.size()) mOperations.resize(static_cast<std::size_t>(number) + 1);
  return &mOperations[static_cast<std::size_t>(number)];
}

std::vector<std::uint64_t> RecordRules::OpenRecords() const {
  std::vector<std::uint64_t> open;
  for (std::size_t number = 0; number < mOperations.size(); ++number) {
    if (mOperations[number] == Operation::Begun) open.push_back(number);
  }
  return open;
}

}  // namespace kv
