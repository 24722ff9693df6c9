#include "journal/ChangeJournal.h"

#include <algorithm>
#include <random>
#include <utility>

#include "base/FilePlatform.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "base/ScopeGuard.h"
#include "base/Texts.h"
#include "journal/JournalTime.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

using Access = JournalDisk::Access;

// Two writers wait for each other's flush; a disk that needs longer than this is no disk to record on.
constexpr Duration kLongestLock = std::chrono::seconds(5);
constexpr Duration kLockTurn = std::chrono::milliseconds(2);
// No journal leaves out so many numbers: a record that does is none to go on from.
constexpr std::uint64_t kFarAway = 1'000'000;

std::string NewJournalName() {
  constexpr int kWords = 4;
  std::random_device random;
  std::string name;
  for (int i = 0; i < kWords; ++i) name += ToHex(random(), 8);
  return name;
}

// Where the record begins that ends where the head says; nothing when another one does.
std::optional<std::uint64_t> PlaceOf(JournalFile& file, const JournalHead& head) {
  constexpr std::uint64_t kUsual = 4096;
  for (const std::uint64_t most : {kUsual, std::uint64_t{kLongestJournalLine} + 2}) {
    const std::uint64_t from = head.end - std::min(head.end, most);
    const auto bytes = file.Read(from, static_cast<std::size_t>(head.end - from));
    if (!bytes || bytes->size() != head.end - from || !bytes->ends_with('\n')) return std::nullopt;
    const std::string_view text = std::string_view(*bytes).substr(0, bytes->size() - 1);
    const std::size_t before = text.rfind('\n');
    if (before == std::string_view::npos && from > 0) continue;
    const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
    const auto read = ParseRecord(text.substr(start));
    const bool isIt = read && read->hash == head.hash && read->record.number == head.number;
    return isIt ? std::optional(from + start) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

ChangeJournal::ChangeJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer, const WallClock& clock)
    : mPlaces(places),
      mDisk(disk),
      mPacer(pacer),
      mClock(clock),
      mLockFile(LockFile(places.folder)),
      mHeadFile(HeadFile(places)) {}

std::optional<JournalHead> ChangeJournal::Head() const {
  return mTail && mTail->number > 0 ? mTail : std::nullopt;
}

std::unexpected<FileError> ChangeJournal::Failed(const fs::path& file, const std::error_code& why) const {
  return std::unexpected(FileError{Utf8FromPath(file), "", "it cannot be written (" + SystemMessage(why) + ")"});
}

auto ChangeJournal::Prepare() -> Done {
  const auto lock = TakeLock();
  if (!lock) return std::unexpected(lock.error());
  std::error_code error;
  const fs::space_info space = fs::space(mPlaces.folder, error);
  if (!error && space.available < (kLeastJournalRoom << 10)) {
    return Failed(mPlaces.folder, std::make_error_code(std::errc::no_space_on_device));
  }
  const ScopeGuard closed([this] { mLast.reset(); });
  if (const Done known = CatchUp(); !known || mLast || NeedsSegment()) return known;
  const fs::path last = SegmentFile(mPlaces.folder, mTail->segment);  // read, but it may be protected
  const auto file = mDisk.Open(last, Access::Write);
  return file ? Done() : Failed(last, file.error());
}

std::expected<std::uint64_t, FileError> ChangeJournal::Append(JournalRecord record) {
  const auto lock = TakeLock();
  if (!lock) return std::unexpected(lock.error());
  if (const Done known = CatchUp(); !known) return std::unexpected(known.error());
  const ScopeGuard closed([this] { mLast.reset(); });
  return Write(std::move(record));
}

auto ChangeJournal::Settle() -> Done {
  const auto lock = TakeLock();
  if (!lock) return std::unexpected(lock.error());
  if (const Done known = CatchUp(); !known) return known;
  const ScopeGuard closed([this] { mLast.reset(); });
  if (mTornBytes == 0 && !mMisfit) return {};
  const auto written = Write(std::nullopt);
  return written ? Done() : std::unexpected(written.error());
}

auto ChangeJournal::TakeLock() -> Lock {
  auto lock = mDisk.Open(mLockFile, Access::Replace);
  if (!lock && lock.error() == std::errc::no_such_file_or_directory) {  // the session's folder has gone meanwhile
    std::error_code ignored;
    fs::create_directories(mPlaces.folder, ignored);
    lock = mDisk.Open(mLockFile, Access::Replace);
  }
  if (!lock) return Failed(mLockFile, lock.error());
  const Instant end = mPacer.Now() + kLongestLock;
  while (true) {
    const auto taken = (*lock)->TryLock();
    if (!taken) return Failed(mLockFile, taken.error());
    if (*taken) return std::move(*lock);
    if (mPacer.Now() >= end) return Failed(mLockFile, std::make_error_code(std::errc::device_or_resource_busy));
    mPacer.Sleep(kLockTurn);
  }
}

// What others have written since, or all of it. A file that has become shorter, is followed by another one or no longer
// has the last record at its place is looked at anew.
auto ChangeJournal::CatchUp() -> Done {
  std::error_code ignored;
  const bool isSame =
      mTail && mTail->segment > 0 && !fs::exists(SegmentFile(mPlaces.folder, mTail->segment + 1), ignored);
  if (!isSame) return Reload();
  auto file = mDisk.Open(SegmentFile(mPlaces.folder, mTail->segment), Access::Write);
  const auto size = file ? (*file)->Size() : std::unexpected(file.error());
  if (!size || *size < mTail->end || !HasLastRecord(**file)) return Reload();
  if (Done read = ReadOn(**file, *size); !read) return read;
  mLast = std::move(*file);
  return {};
}

// A file in which the record is missing was put in the place of the journal, and may be the longer one.
bool ChangeJournal::HasLastRecord(JournalFile& file) const {
  if (!mLastAt) return true;
  const auto hash = file.Read(*mLastAt, mTail->hash.size());
  return hash && *hash == mTail->hash;
}

auto ChangeJournal::Reload() -> Done {
  const std::optional<JournalHead> seen = Head();
  std::optional<JournalHead> kept = ReadHead(mDisk, mHeadFile);
  if (!kept) kept = seen;
  const std::vector<unsigned> segments = SegmentsIn(mPlaces.folder);
  mTornBytes = 0;
  mMisfit.reset();
  mLastAt.reset();
  if (segments.empty()) {
    mTail = JournalHead{.hash = std::string(kNoHash)};
    mMisfit = kept;
    return {};
  }
  const fs::path last = SegmentFile(mPlaces.folder, segments.back());
  const auto file = mDisk.Open(last, Access::Read);
  if (!file) return Failed(last, file.error());
  if (kept && kept->segment == segments.back()) mLastAt = PlaceOf(**file, *kept);
  if (!mLastAt) return ReadAll(segments, kept);
  mTail = kept;
  return ReadRest(**file);
}

auto ChangeJournal::ReadAll(const std::vector<unsigned>& segments, const std::optional<JournalHead>& kept) -> Done {
  mTail = JournalHead{.hash = std::string(kNoHash)};
  mMisfit = kept;  // until its record is met
  for (const unsigned segment : segments) {
    mTail->segment = segment;
    mTail->end = 0;
    mLastAt.reset();
    const fs::path path = SegmentFile(mPlaces.folder, segment);
    const auto file = mDisk.Open(path, Access::Read);
    if (!file) return Failed(path, file.error());
    if (Done read = ReadRest(**file, kept); !read) return read;
  }
  return {};
}

auto ChangeJournal::ReadRest(JournalFile& file, const std::optional<JournalHead>& kept) -> Done {
  const auto size = file.Size();
  return size ? ReadOn(file, *size, kept) : Failed(SegmentFile(mPlaces.folder, mTail->segment), size.error());
}

auto ChangeJournal::ReadOn(JournalFile& file, std::uint64_t size, const std::optional<JournalHead>& kept) -> Done {
  mTornBytes = 0;
  if (size <= mTail->end) return {};
  JournalLines lines(file, mTail->end, size);
  while (lines.Next()) {
    Take(lines.Line(), kept);
    mTail->end = lines.End();
  }
  if (lines.Error()) return Failed(SegmentFile(mPlaces.folder, mTail->segment), lines.Error());
  mTornBytes = lines.TornBytes();
  if (mTornBytes > 0) mTornHash = HashOfPart(file, lines.End(), size);
  return {};
}

// The line behind the end. One that is no record takes a number all the same: the next record must not have that of one
// that was altered.
void ChangeJournal::Take(std::string_view line, const std::optional<JournalHead>& kept) {
  const auto read = ParseRecord(line);
  const bool isNear = read && read->record.number < mTail->number + kFarAway;
  mTail->number = isNear ? std::max(read->record.number, mTail->number) : mTail->number + 1;
  if (!isNear) return;
  mTail->hash = read->hash;
  mLastAt = mTail->end;
  if (!read->record.journal.empty()) mTail->journal = read->record.journal;
  if (kept && read->record.number == kept->number && read->hash == kept->hash) mMisfit.reset();
}

bool ChangeJournal::NeedsSegment() const {
  return mTail->segment == 0 || mTail->journal.empty() || mIsBroken || mTail->end >= kFullSegment;
}

std::expected<std::uint64_t, FileError> ChangeJournal::Write(std::optional<JournalRecord> record) {
  const bool isNew = NeedsSegment();
  Addition addition{*mTail, {}};
  if (isNew) {
    addition.tail.segment += 1;
    addition.tail.end = 0;
    const JournalRecord first = FirstOfSegment();
    addition.tail.journal = first.journal;
    Add(addition, first);
  }
  AddWhatWasFound(addition);
  if (record) Add(addition, *std::move(record));

  const std::uint64_t from = isNew ? 0 : mTail->end;
  if (const Done saved = Save(addition, isNew, from); !saved) return std::unexpected(saved.error());
  mTail = addition.tail;
  mTail->end = from + addition.lines.size();
  mLastAt = from + addition.lastAt;
  mIsBroken = false;
  mTornBytes = 0;
  mMisfit.reset();
  KeepHead();
  return mTail->number;
}

auto ChangeJournal::Save(const Addition& addition, bool isNew, std::uint64_t from) -> Done {
  const fs::path path = SegmentFile(mPlaces.folder, addition.tail.segment);
  if (addition.tail.segment > kMostSegments) return Failed(path, std::make_error_code(std::errc::file_too_large));
  std::unique_ptr<JournalFile> file = isNew ? nullptr : std::move(mLast);
  if (!file) {
    auto opened = mDisk.Open(path, isNew ? Access::Create : Access::Write);
    if (!opened) return Failed(path, opened.error());
    file = std::move(*opened);
  }
  std::error_code error = !isNew && mTornBytes > 0 ? file->Truncate(from) : std::error_code();
  if (!error) error = file->Write(from, addition.lines);
  if (!error) error = file->Flush();
  if (!error) {
    if (isNew) mDisk.FlushFolder(mPlaces.folder);
    return {};
  }
  mIsBroken = true;
  const std::error_code isCut = file->Truncate(from);  // nobody is to take it for a record, if that can be had
  file.reset();
  std::error_code ignored;
  if (isNew && !isCut) fs::remove(path, ignored);
  return Failed(path, error);
}

void ChangeJournal::Add(Addition& addition, JournalRecord record) const {
  record.number = ++addition.tail.number;
  record.previous = addition.tail.hash;
  record.time = JournalTime(mClock);
  const std::string line = PrintRecord(record);
  addition.lastAt = addition.lines.size();
  addition.tail.hash = line.substr(0, kNoHash.size());
  addition.lines += line;
  addition.lines += '\n';
}

// A journal whose beginning was taken out goes on: a second start in it would be none that these programs write.
JournalRecord ChangeJournal::FirstOfSegment() const {
  const bool isNamed = !mTail->journal.empty();
  JournalRecord first{.journal = isNamed ? mTail->journal : NewJournalName()};
  first.kind = mTail->number == 0 ? RecordKind::Start : RecordKind::Segment;
  if (first.kind == RecordKind::Start) return first;
  if (!isNamed)
    first.detail = "the files before this one do not say which journal it is";
  else
    first.detail = mIsBroken ? "a write to the file before this one failed" : "the file before this one is full";
  return first;
}

void ChangeJournal::AddWhatWasFound(Addition& addition) const {
  if (mTornBytes > 0) {
    JournalRecord repair{.kind = RecordKind::Repair, .count = mTornBytes, .hash = mTornHash};
    repair.detail = Counted(mTornBytes, "byte") + " without a line end, as a crash leaves them, " +
                    (NeedsSegment() ? "left at the end of the file before this one" : "cut off here");
    Add(addition, std::move(repair));
  }
  if (!mMisfit) return;
  JournalRecord finding{.kind = RecordKind::Finding, .count = mMisfit->number, .hash = mMisfit->hash};
  finding.detail = "The journal is not the one that was written here before: record " +
                   std::to_string(mMisfit->number) + " of it is missing or another one.";
  Add(addition, std::move(finding));
}

void ChangeJournal::KeepHead() {
  if (mHeadFile.empty()) {
    mHeadTrouble =
        "The head of the change journal is kept nowhere, because this user has no folder for it: an end that is cut "
        "off "
        "from the journal would not be found.";
    return;
  }
  const std::error_code error = WriteHead(mDisk, mHeadFile, *mTail);
  mHeadTrouble = error
                     ? "The head of the change journal cannot be kept in " + Utf8FromPath(mPlaces.stateFolder) + " (" +
                           SystemMessage(error) + "): an end that is cut off from the journal would not be found."
                     : "";
}

}  // namespace kv
