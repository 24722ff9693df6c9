#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Pacer.h"
#include "journal/JournalCheck.h"
#include "journal/JournalRecord.h"

namespace kv {

// One operation as people read it: how it began, and how it ended; or a record that is no operation.
struct JournalEntry {
  JournalRecord record;
  std::optional<JournalRecord> end;  // of an operation

  [[nodiscard]] bool IsOperation() const { return record.kind == RecordKind::Begin; }
  [[nodiscard]] std::string Moment() const;      // "2026-11-22 08:41:12"
  [[nodiscard]] std::string Controller() const;  // "K220-22-R1, serial number 305419896, project Mixer"
  [[nodiscard]] std::string What() const;        // "write operands", or what the record tells
  [[nodiscard]] std::string Result() const;      // "done", "failed: ...", "begun, and not ended"
};

// The newest are kept where there are more than this, or more bytes of records.
inline constexpr std::size_t kMostJournalEntries = 100'000;
inline constexpr std::size_t kMostJournalBytes = std::size_t{64} << 20;

// Which entries are wanted; an empty text is no condition.
struct JournalFilter {
  std::string operand{};  // "MI 5", "MI" for all of them, "MI 0..9" for each of these; unchanged ones do not count
  std::string user{};     // a part of the name, in either case
  std::string day{};      // "2026-11-22", or its beginning: "2026-11"
  std::size_t most = kMostJournalEntries;

  // Why it is not understood, with an example; empty when it is. One that is not understood finds nothing.
  [[nodiscard]] std::string Fault() const;
  // Of one that is understood.
  [[nodiscard]] bool Wants(const JournalEntry& entry) const;
};

struct JournalListing {
  std::vector<JournalEntry> entries;  // in the order of their numbers
  std::uint64_t left = 0;             // older entries that were too many
  std::uint64_t unreadable = 0;       // lines that are no records: see the check
  std::uint64_t readBefore = 0;       // number of the record before the first of them
};

[[nodiscard]] JournalListing ListJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer,
                                         const JournalFilter& filter);

// "MI 3: 12 -> 15", a line for each operand whose value is known; without values "MI 0..59". What was written with the
// value that it had stands in one line behind them: "unchanged: MI 4..9".
[[nodiscard]] std::vector<std::string> OperandLines(const JournalEntry& entry);

// A table with a line for each operand of each entry, and the head of the journal in its last line. UTF-8 with a
// byte-order mark, CR LF.
[[nodiscard]] std::string JournalCsv(const JournalListing& listing, const JournalCheck& check);

}  // namespace kv
