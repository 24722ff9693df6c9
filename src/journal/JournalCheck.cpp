#include "journal/JournalCheck.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/FilePlatform.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "digest/Sha256.h"
#include "journal/JournalTime.h"
#include "journal/RecordRules.h"

namespace kv {
namespace {

constexpr std::size_t kMostFindings = 100;
constexpr std::size_t kMostGaps = 1000;  // that are looked for further on
constexpr int kLinesPerTurn = 256;

std::string Record(std::uint64_t number) {
  return "Record " + std::to_string(number);
}

// Goes through the lines of a journal in their order.
class Checker {
 public:
  explicit Checker(std::vector<JournalAnchor> anchors) : mAnchors(std::move(anchors)), mMet(mAnchors.size()) {
    mCheck.anchors = mAnchors.size();
  }

  void Line(std::string_view line) {
    const auto read = ParseRecord(line);
    ++mCheck.records;
    if (!read) return Unreadable(read.error());
    const std::uint64_t number = read->record.number;
    if (number < mExpected) return Late(*read);
    if (number > mExpected) {
      Gap(number);
    } else if (mIsChained && read->record.previous != mHash) {
      Add(JournalFault::Altered, number - 1,
          Record(number - 1) + " was altered, or " + std::to_string(number) +
              " was: the second does not carry the hash of the first.");
    }
    Take(*read);
  }

  void BeginFile() { mRules.BeginFile(); }
  // Bytes without a line end behind the last line of the file. More may follow in the next file.
  void EndFile(std::uint64_t tornBytes, std::string tornHash) {
    mCheck.tornBytes = tornBytes;
    mRules.EndFile(tornBytes, std::move(tornHash));
  }
  void Unread(const std::string& why) {
    Add(JournalFault::Unreadable, mExpected, "The journal cannot be read: " + why);
  }

  [[nodiscard]] JournalCheck Finish() && {
    for (const auto& [from, to] : mGaps) AddMissing(from, to);
    if (mHead.number > 0) mCheck.head = mHead;
    SortFindings();
    for (const JournalRecord& each : mAcknowledgements) Acknowledge(each);
    for (std::size_t i = 0; i < mAnchors.size(); ++i) HoldAgainst(mAnchors[i], mMet[i]);
    SortFindings();
    mCheck.openRecords = mRules.OpenRecords();
    return std::move(mCheck);
  }

 private:
  enum class Met : std::uint8_t { Not, Same, Other };
  using Gaps = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

  void Add(JournalFault fault, std::uint64_t number, std::string text) {
    if (mCheck.findings.size() >= kMostFindings) {
      ++mCheck.moreFindings;
      return;
    }
    mCheck.findings.push_back({fault, number, std::move(text)});
  }

  void AddMissing(std::uint64_t from, std::uint64_t to) {
    Add(JournalFault::Missing, from,
        from == to ? Record(from) + " is missing."
                   : "Records " + std::to_string(from) + " to " + std::to_string(to) + " are missing.");
  }

  // It takes the place of the record that was to come.
  void Unreadable(std::string_view why) {
    Add(JournalFault::Altered, mExpected, Record(mExpected) + " was altered: " + std::string(why) + ".");
    mRules.TakeUnreadable();
    ++mExpected;
    mIsChained = false;
  }

  void Gap(std::uint64_t number) {
    if (mGaps.size() < kMostGaps) {
      mGaps.emplace_back(mExpected, number - 1);
    } else {
      AddMissing(mExpected, number - 1);
    }
    mRules.NoteGap();
  }

  void Late(const ReadRecord& read) {
    const std::uint64_t number = read.record.number;
    const auto gap = std::ranges::find_if(
        mGaps, [number](const auto& each) { return each.first <= number && number <= each.second; });
    if (gap == mGaps.end()) {
      return Add(JournalFault::Doubled, number, Record(number) + " is there a second time.");
    }
    Add(JournalFault::Exchanged, number,
        Record(number) + " stands behind record " + std::to_string(mExpected - 1) + ": they were exchanged.");
    const auto [from, to] = *gap;
    mGaps.erase(gap);
    if (number > from) mGaps.emplace_back(from, number - 1);
    if (number < to) mGaps.emplace_back(number + 1, to);
    Meet(read);
    mRules.TakeLate(read.record);
  }

  void Take(const ReadRecord& read) {
    mHash = read.hash;
    mIsChained = true;
    mExpected = read.record.number + 1;
    mHead.number = read.record.number;
    mHead.hash = read.hash;
    if (!read.record.journal.empty()) mHead.journal = read.record.journal;
    if (read.record.kind == RecordKind::Finding) {
      Add(JournalFault::FoundThen, read.record.number, Record(read.record.number) + " says: " + read.record.detail);
    }
    if (const std::string_view fault = mRules.Take(read.record); !fault.empty()) {
      Add(JournalFault::Impossible, read.record.number,
          Record(read.record.number) + " is none that these programs write: " + std::string(fault) + ".");
    }
    if (read.record.kind == RecordKind::Acknowledged && mAcknowledgements.size() < kMostFindings) {
      mAcknowledgements.push_back(read.record);
    }
    NoteTime(read.record);
    Meet(read);
  }

  void SortFindings() {
    std::ranges::sort(mCheck.findings, {},
                      [](const auto& finding) { return std::pair(finding.number, finding.fault); });
  }

  // Where what is found before the record is what was found when it was written.
  void Acknowledge(const JournalRecord& record) {
    const auto behind =
        std::ranges::find_if(mCheck.findings, [&](const auto& finding) { return finding.number >= record.number; });
    std::vector<JournalCheck::Finding> found = mCheck.acknowledged;
    found.insert(found.end(), mCheck.findings.begin(), behind);
    if (mCheck.moreFindings > 0 || found.size() != record.count || DigestOf(found) != record.hash) return;
    mCheck.acknowledged = std::move(found);
    mCheck.findings.erase(mCheck.findings.begin(), behind);
    mCheck.acknowledgements.push_back(record);
  }

  void NoteTime(const JournalRecord& record) {
    const auto time = ParseJournalTime(record.time);
    if (time && mTime && *time < *mTime && mCheck.clockBack.size() < kMostFindings) {
      mCheck.clockBack.push_back(record.number);
    }
    if (time) mTime = time;
  }

  void Meet(const ReadRecord& read) {
    for (std::size_t i = 0; i < mAnchors.size(); ++i) {
      if (mAnchors[i].number != read.record.number) continue;
      mMet[i] = mAnchors[i].hash == read.hash ? Met::Same : Met::Other;
    }
  }

  void HoldAgainst(const JournalAnchor& anchor, Met met) {
    if (met == Met::Same) {
      if (anchor.isKept) mCheck.behindHead = mHead.number - std::min(anchor.number, mHead.number);
      return;
    }
    const std::string named = "record " + std::to_string(anchor.number) + ", which " + anchor.source + " names";
    if (met == Met::Other) {
      return Add(JournalFault::Replaced, anchor.number,
                 "The journal was replaced: " + named +
                     ", is another one here. An older copy was gone on with, or records were written anew.");
    }
    if (anchor.number < mExpected) {  // told as altered or missing, unless that was acknowledged
      if (mCheck.acknowledged.empty()) return;
      return Add(JournalFault::Missing, anchor.number, "There is no " + named + ": it was taken out or altered.");
    }
    if (mCheck.records == 0) {
      return Add(JournalFault::Gone, anchor.number, "The journal is gone: there is no " + named + ".");
    }
    const std::string end = "The journal ends with record " + std::to_string(mExpected - 1) + ", before " + named;
    if (mCheck.tornBytes > 0) {
      return Add(JournalFault::Cut, anchor.number, end + ", and in the middle of a record: its end was cut off.");
    }
    Add(JournalFault::OlderCopy, anchor.number, end + ": an older copy was put in its place, or its end was cut off.");
  }

  JournalCheck mCheck;
  std::vector<JournalAnchor> mAnchors;
  std::vector<Met> mMet;
  std::uint64_t mExpected = 1;
  bool mIsChained = true;
  std::string mHash{kNoHash};
  JournalHead mHead;
  Gaps mGaps;
  RecordRules mRules;
  std::vector<JournalRecord> mAcknowledgements;
  std::optional<std::chrono::sys_time<std::chrono::milliseconds>> mTime;
};

struct FaultName {
  JournalFault fault;
  std::string_view word;
};
constexpr std::array kFaults{
    FaultName{JournalFault::Altered, "altered"},
    FaultName{JournalFault::Missing, "missing"},
    FaultName{JournalFault::Doubled, "doubled"},
    FaultName{JournalFault::Exchanged, "exchanged"},
    FaultName{JournalFault::Cut, "cut"},
    FaultName{JournalFault::OlderCopy, "olderCopy"},
    FaultName{JournalFault::Replaced, "replaced"},
    FaultName{JournalFault::FoundThen, "foundThen"},
    FaultName{JournalFault::Gone, "gone"},
    FaultName{JournalFault::Unreadable, "unreadable"},
    FaultName{JournalFault::Impossible, "impossible"},
};

std::string Listed(const std::vector<std::uint64_t>& numbers) {
  constexpr std::size_t kShown = 10;
  std::string text;
  for (std::size_t i = 0; i < std::min(numbers.size(), kShown); ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(numbers[i]);
  }
  return numbers.size() > kShown ? text + " ..." : text;
}

constexpr std::string_view kAcknowledgeCure =
    "What to do: keep a copy of the session's folder, and find out who or what did it. Where it was meant, Acknowledge "
    "in "
    "the window of the journal, or kvtele --reason TEXT journal acknowledge, records that.";

void AddAcknowledged(const JournalCheck& check, std::vector<std::string>& lines) {
  for (const JournalRecord& each : check.acknowledgements) {
    lines.push_back("Acknowledged in record " + std::to_string(each.number) + " by " + each.user + ": " + each.reason);
  }
  for (const JournalCheck::Finding& finding : check.acknowledged) lines.push_back("Acknowledged: " + finding.text);
}

}  // namespace

std::string DigestOf(const std::vector<JournalCheck::Finding>& findings) {
  std::vector<std::pair<std::uint64_t, std::string_view>> all;
  for (const JournalCheck::Finding& each : findings) all.emplace_back(each.number, FaultWord(each.fault));
  std::ranges::sort(all);
  Sha256 digest;
  for (const auto& [number, word] : all) digest.Add(std::string(word) + " " + std::to_string(number) + "\n");
  return digest.Hex();
}

std::string_view FaultWord(JournalFault fault) {
  return std::ranges::find(kFaults, fault, &FaultName::fault)->word;
}

std::string VerdictText(const JournalCheck& check) {
  const std::size_t findings = check.findings.size() + check.moreFindings;
  if (findings > 0) {
    return "The journal is not in order: " + Counted(findings, "finding") + " in " + Counted(check.records, "record") +
           ".";
  }
  if (check.records == 0 && !check.IsAnchored()) {
    return "There is no journal here: nothing was changed in this session, or it was taken away. Nothing outside the "
           "session's folder tells which.";
  }
  const std::string whole =
      "The journal is in order: " + Counted(check.records, "record") + ", each as it was written" +
      (check.acknowledged.empty() ? ""
                                  : ", apart from " + Counted(check.acknowledged.size(), "finding") + " that " +
                                        (check.acknowledged.size() == 1 ? "was" : "were") + " acknowledged");
  if (check.IsAnchored()) return whole + ", up to the head that was kept.";
  return whole + ". Whether an end was cut off cannot be told: no head is kept outside the session's folder.";
}

std::vector<std::string> CheckLines(const JournalCheck& check) {
  std::vector<std::string> lines;
  for (const JournalCheck::Finding& finding : check.findings) lines.push_back(finding.text);
  if (check.moreFindings > 0) lines.push_back("And " + Counted(check.moreFindings, "finding") + " more.");
  if (!check.findings.empty()) lines.emplace_back(kAcknowledgeCure);
  AddAcknowledged(check, lines);
  if (check.behindHead > 0) {
    lines.push_back(Counted(check.behindHead, "record stands", "records stand") +
                    " behind the head that is kept for this user. A crash leaves one or two there, a power failure "
                    "more, and so does another user of this folder. Else they were not written by this program.");
  }
  if (check.isHeadDamaged) {
    lines.emplace_back(
        "One of the two places for the head is damaged, and the other one was used: an end that was cut off behind it "
        "is not found.");
  }
  const bool isCut =
      std::ranges::find(check.findings, JournalFault::Cut, &JournalCheck::Finding::fault) != check.findings.end();
  if (check.tornBytes > 0 && !isCut) {
    lines.push_back(Counted(check.tornBytes, "byte") +
                    " without a line end stand behind the last record, as a crash leaves them. " +
                    (check.IsAnchored() ? "No record up to the head is lost by it; the next one cuts them off."
                                        : "Whether they were a record cannot be told, because no head is kept. The "
                                          "next record cuts them off."));
  }
  if (!check.openRecords.empty()) {
    lines.push_back("Begun and not ended: " + Listed(check.openRecords) +
                    ". The program or its computer ended meanwhile, or it is still at it.");
  }
  if (!check.clockBack.empty()) {
    lines.push_back("The clock was set back before: " + Listed(check.clockBack) + ". The numbers tell the order.");
  }
  return lines;
}

std::optional<JournalAnchor> ParseAnchor(std::string_view text) {
  if (text.ends_with('\r')) text.remove_suffix(1);  // a line of a manifest
  const auto isHash = [](std::string_view hash) {
    return hash.size() == kNoHash.size() && hash.find_first_not_of("0123456789abcdef") == std::string_view::npos;
  };
  const std::size_t middle = text.find_first_of(", ");
  if (middle == std::string_view::npos) return std::nullopt;
  std::string_view hash = text.substr(0, middle);
  std::string_view count = TrimBlanks(text.substr(middle + 1));
  if (!isHash(hash)) std::swap(hash, count);
  const auto number = ParseInteger(count);
  if (!isHash(hash) || !number || *number < 1) return std::nullopt;
  return JournalAnchor{static_cast<std::uint64_t>(*number), std::string(hash), "the head that was given"};
}

// Where the lock cannot be had (a write-protected folder, a writer that hangs) a record may be half written.
JournalSnapshot TakeSnapshot(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer) {
  constexpr int kTurns = 500;
  constexpr Duration kTurn = std::chrono::milliseconds(2);
  const auto lock = disk.Open(LockFile(places.folder), JournalDisk::Access::Write);
  for (int i = 0; lock && i < kTurns && !(*lock)->TryLock().value_or(true); ++i) pacer.Sleep(kTurn);
  JournalSnapshot snapshot;
  for (const unsigned segment : SegmentsIn(places.folder)) {
    const auto file = disk.Open(SegmentFile(places.folder, segment), JournalDisk::Access::Read);
    snapshot.segments.push_back({segment, file ? (*file)->Size().value_or(0) : 0});
  }
  return snapshot;
}

JournalCheck CheckJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer,
                          std::vector<JournalAnchor> anchors) {
  // The head before the journal: what is written between the two only makes the journal longer.
  if (const auto kept = ReadHead(disk, HeadFile(places))) {
    anchors.push_back({kept->number, kept->hash, "the head kept for this user", true});
  }
  const JournalSnapshot snapshot = TakeSnapshot(places, disk, pacer);
  Checker checker(std::move(anchors));
  for (const JournalSnapshot::Segment& segment : snapshot.segments) {
    const auto file = disk.Open(SegmentFile(places.folder, segment.number), JournalDisk::Access::Read);
    if (!file) {
      checker.Unread(SystemMessage(file.error()));
      continue;
    }
    checker.BeginFile();
    JournalLines lines(**file, 0, segment.length);
    for (int i = 1; lines.Next(); ++i) {
      checker.Line(lines.Line());
      if (i % kLinesPerTurn == 0) pacer.Turn();
    }
    checker.EndFile(lines.TornBytes(), HashOfPart(**file, lines.End(), segment.length));
    if (lines.Error()) checker.Unread(SystemMessage(lines.Error()));
  }
  JournalCheck check = std::move(checker).Finish();
  check.isHeadDamaged = IsHeadDamaged(disk, HeadFile(places));
  return check;
}

}  // namespace kv
