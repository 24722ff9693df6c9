#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/AtomicFile.h"
#include "desktop/Pacer.h"
#include "desktop/WallClock.h"
#include "journal/JournalDisk.h"
#include "journal/JournalFiles.h"
#include "journal/JournalHead.h"
#include "journal/JournalRecord.h"

namespace kv {

// Room for the records of an operation, in KiB. With less the disk counts as full.
inline constexpr std::uintmax_t kLeastJournalRoom = 256;

// Writes the journal of one session. Several programs may write to it at once: each record is written under a lock,
// behind whatever others have written meanwhile.
//
//   unknown -> at its end       the last record is looked up, by the head if that fits; else everything is read
//   at its end -> at its end    a record is written, flushed, and its head kept
//   at its end -> broken        a write or flush failed; what is on the disk now is not known
//   broken -> at its end        the next record begins a new file: a second flush could report success on lost data
//
// Bytes without a line end, as a crash leaves them, are cut off before the next record, and a journal that is not what
// its head says is gone on with; both are recorded.
class ChangeJournal {
 public:
  ChangeJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer, const WallClock& clock);

  // Whether records can be written now, as far as that can be known without writing one.
  [[nodiscard]] std::expected<void, FileError> Prepare();
  // Number, time and hash of the record before are filled in. When there is a number, the record is safe on the disk.
  [[nodiscard]] std::expected<std::uint64_t, FileError> Append(JournalRecord record);
  // Records what would be recorded before the next record: a torn end, and that the journal is not what its head says.
  [[nodiscard]] std::expected<void, FileError> Settle();

  // Of the last record that was written or found here; nothing before the first.
  [[nodiscard]] std::optional<JournalHead> Head() const;
  // Why the head could not be kept outside the session's folder; empty when it was.
  [[nodiscard]] const std::string& HeadTrouble() const { return mHeadTrouble; }
  [[nodiscard]] const JournalPlaces& Places() const { return mPlaces; }

 private:
  using Done = std::expected<void, FileError>;
  using Lock = std::expected<std::unique_ptr<JournalFile>, FileError>;
  // Lines that are to be written together, and the journal's end behind them.
  struct Addition {
    JournalHead tail;
    std::string lines;
    std::size_t lastAt = 0;  // of these, where the last one begins
  };

  [[nodiscard]] Lock TakeLock();
  [[nodiscard]] Done CatchUp();
  [[nodiscard]] Done Reload();
  [[nodiscard]] Done ReadAll(const std::vector<unsigned>& segments, const std::optional<JournalHead>& kept);
  [[nodiscard]] Done ReadRest(JournalFile& file, const std::optional<JournalHead>& kept = {});
  [[nodiscard]] Done ReadOn(JournalFile& file, std::uint64_t size, const std::optional<JournalHead>& kept = {});
  void Take(std::string_view line, const std::optional<JournalHead>& kept);
  [[nodiscard]] bool HasLastRecord(JournalFile& file) const;

  [[nodiscard]] std::expected<std::uint64_t, FileError> Write(std::optional<JournalRecord> record);
  [[nodiscard]] Done Save(const Addition& addition, bool isNew, std::uint64_t from);
  void Add(Addition& addition, JournalRecord record) const;
  void AddWhatWasFound(Addition& addition) const;
  [[nodiscard]] bool NeedsSegment() const;
  [[nodiscard]] JournalRecord FirstOfSegment() const;
  void KeepHead();

  [[nodiscard]] std::unexpected<FileError> Failed(const std::filesystem::path& file, const std::error_code& why) const;

  JournalPlaces mPlaces;
  JournalDisk& mDisk;
  Pacer& mPacer;
  const WallClock& mClock;
  std::filesystem::path mLockFile;
  std::filesystem::path mHeadFile;
  std::optional<JournalHead> mTail;      // the end as it was last seen; number 0: there is no journal
  std::optional<std::uint64_t> mLastAt;  // where the record that mTail names begins, if that is in the last file
  std::unique_ptr<JournalFile> mLast;    // the last file, while a record is about to be written to it
  bool mIsBroken = false;
  std::uint64_t mTornBytes = 0;  // behind it
  std::string mTornHash;
  std::optional<JournalHead> mMisfit;  // a head that was kept and does not belong to what is there
  std::string mHeadTrouble;
};

}  // namespace kv
