#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "journal/JournalRecord.h"

namespace kv {

// What the programs never write: a record without what its kind has, or at a place where none of its kind stands. Goes
// through the records of a journal in their order; numbers and hashes are looked after elsewhere.
class RecordRules {
 public:
  void BeginFile() { mLinesInFile = 0; }
  // Bytes without a line end behind the last line of a file; the next file tells of them.
  void EndFile(std::uint64_t tornBytes, std::string tornHash);

  // Of a line that is no record. What it held is not known, so that an operation may have begun there.
  void TakeUnreadable();
  // Some records before the next one are missing, or stand behind it.
  void NoteGap() { mIsWhole = false; }
  // What is wrong with the record, "its time is none"; empty when nothing is.
  [[nodiscard]] std::string_view Take(const JournalRecord& record);
  // The same of one that stands behind its place, of which nothing is expected.
  void TakeLate(const JournalRecord& record) { (void)NoteOperation(record); }

  // Operations that were begun, and have no end.
  [[nodiscard]] std::vector<std::uint64_t> OpenRecords() const;

 private:
  enum class Operation : std::uint8_t { None, Begun, Ended };

  [[nodiscard]] std::string_view FaultOfPlace(const JournalRecord& record);
  [[nodiscard]] std::string_view FaultOfFile(const JournalRecord& record) const;
  [[nodiscard]] std::string_view NoteOperation(const JournalRecord& record);
  [[nodiscard]] Operation* Find(std::uint64_t number);

  std::uint64_t mLines = 0;
  std::uint64_t mLinesInFile = 0;
  bool mIsFurtherFile = false;
  std::uint64_t mTornBytes = 0;  // at the end of the file before
  std::string mTornHash;
  std::string mJournal;
  std::vector<Operation> mOperations;  // by the numbers of records
  JournalRecord mLastEnd;
  bool mIsWhole = true;  // no record is missing up to here
};

}  // namespace kv
