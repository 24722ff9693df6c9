#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Pacer.h"
#include "journal/JournalDisk.h"
#include "journal/JournalFiles.h"
#include "journal/JournalHead.h"
#include "journal/JournalRecord.h"

namespace kv {

// What is wrong with a journal.
enum class JournalFault : std::uint8_t {
  Altered,     // a line is no record, or its hash is not that of its text, or the next one does not follow it
  Missing,     // numbers are left out
  Doubled,     // a number for the second time
  Exchanged,   // a record stands behind one that follows it
  Cut,         // it ends in the middle of a record, before the head that was kept
  OlderCopy,   // it ends with a whole record before that head: an older copy, or cut there
  Replaced,    // it has another record in the place of the head: an older copy that was gone on with, or a new journal
  Impossible,  // it has what the programs never write: a second end of an operation, a record without a time
  FoundThen,   // when it was gone on with, it was not what its head said: the program has recorded that
  Gone,        // a head was kept, and there is no journal
  Unreadable,
};

// A record that the journal must have, as something outside its folder names it.
struct JournalAnchor {
  std::uint64_t number = 0;
  std::string hash;
  std::string source;  // "the head kept for this user"
  bool isKept = false;
};

struct JournalCheck {
  struct Finding {
    JournalFault fault;
    std::uint64_t number = 0;  // of the record
    std::string text;          // a sentence
  };

  std::uint64_t records = 0;
  std::optional<JournalHead> head;  // of the last record
  std::vector<Finding> findings;    // the first hundred
  std::size_t moreFindings = 0;
  std::size_t anchors = 0;  // that it was held against
  // Somebody has looked at these and said why they are so; nothing has changed in what he looked at.
  std::vector<Finding> acknowledged;
  std::vector<JournalRecord> acknowledgements;  // the records that say so
  // Nothing is wrong with these.
  std::uint64_t behindHead = 0;            // records behind the head that is kept for this user
  bool isHeadDamaged = false;              // in the file of the head: the head before the last is used
  std::uint64_t tornBytes = 0;             // behind the last record, as a crash leaves them
  std::vector<std::uint64_t> openRecords;  // operations that were begun, and have no end
  std::vector<std::uint64_t> clockBack;    // records whose time is before that of the one before

  [[nodiscard]] bool IsSound() const { return findings.empty(); }
  // Whether an end that is cut off would have been found.
  [[nodiscard]] bool IsAnchored() const { return anchors > 0; }
};

// "altered", "missing": for scripts.
[[nodiscard]] std::string_view FaultWord(JournalFault fault);

// The verdict in one sentence or two, and what was found, a line each.
[[nodiscard]] std::string VerdictText(const JournalCheck& check);
[[nodiscard]] std::vector<std::string> CheckLines(const JournalCheck& check);

// What was found, as one hash: an acknowledgement names it, so that what is found later is not covered.
[[nodiscard]] std::string DigestOf(const std::vector<JournalCheck::Finding>& findings);

// "HASH,COUNT" or "COUNT HASH", as the programs print it; nothing for any other text.
[[nodiscard]] std::optional<JournalAnchor> ParseAnchor(std::string_view text);

// The files of a journal and their lengths, taken while nobody writes: what comes later does not count.
struct JournalSnapshot {
  struct Segment {
    unsigned number = 0;
    std::uint64_t length = 0;
  };
  std::vector<Segment> segments;
};
[[nodiscard]] JournalSnapshot TakeSnapshot(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer);

// Reads the whole journal and holds it against the head that is kept for this user, and against the anchors.
[[nodiscard]] JournalCheck CheckJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer,
                                        std::vector<JournalAnchor> anchors = {});

}  // namespace kv
