#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "link/ChangeObserver.h"

namespace kv {

// The longest line of a journal, its line end not counted. A reader holds no more than this in memory.
inline constexpr std::size_t kLongestJournalLine = std::size_t{1} << 20;

// A text of more bytes is recorded by its beginning, its length and its hash.
inline constexpr std::size_t kLongestJournalText = 4096;

// Before the first record.
inline constexpr std::string_view kNoHash = "0000000000000000000000000000000000000000000000000000000000000000";

enum class RecordKind : std::uint8_t {
  Start,         // the first record of a journal
  Segment,       // the first of a further file of it
  Begin,         // an operation is about to change a controller
  End,           // of the operation that record `of` began
  Repair,        // bytes without an end were cut off
  Finding,       // the journal was not what its head, kept elsewhere, says
  Unrecorded,    // the user has let changes pass while the journal could not be written
  Acknowledged,  // somebody has looked at what the check finds before this record, and says why it is so
};

// One record. Which fields a kind has, and the form of a line: docs/file-formats.md. Texts are UTF-8.
struct JournalRecord {
  std::uint64_t number = 0;  // from 1 on
  std::string previous{};    // hash of the record before it
  std::string time{};        // "2026-11-22T08:41:12.345+01:00"
  RecordKind kind = RecordKind::Begin;
  std::string journal{};  // Start, Segment: what tells this journal from others
  std::string user{};     // Begin, Acknowledged
  // Begin
  ControllerName controller{};
  std::string link{};
  std::string tool{};
  std::string what{};
  std::vector<ChangedOperands> operands{};
  std::string reason{};  // Begin, Acknowledged
  // End
  std::uint64_t of = 0;
  std::string result{};  // a word: "done", "sent", "refused", "failed", "stopped"
  // Everything but Begin
  std::string detail{};
  // Repair: bytes; Unrecorded: changes; Finding: the number that the head names; Acknowledged: findings
  std::uint64_t count = 0;
  std::string hash{};  // Repair, Acknowledged: of these; Finding: that the head names

  bool operator==(const JournalRecord&) const = default;
};

[[nodiscard]] std::string_view ResultWord(ChangeResult result);
[[nodiscard]] bool IsResultWord(std::string_view word);
// 64 hexadecimal digits, in small letters.
[[nodiscard]] bool IsJournalHash(std::string_view text);

// The line of a record, without its LF: its hash, a blank, its JSON. Where the line would be too long, values of
// operands are left out, from the last on; after them operands, which are counted instead.
[[nodiscard]] std::string PrintRecord(const JournalRecord& record);

struct ReadRecord {
  JournalRecord record;
  std::string hash;
};
// The error says why the line is no record: "its text does not have the hash that stands before it".
[[nodiscard]] std::expected<ReadRecord, std::string_view> ParseRecord(std::string_view line);

}  // namespace kv
