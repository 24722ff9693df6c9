#include "journal/JournalList.h"

#include <algorithm>
#include <map>

#include "base/Numbers.h"
#include "base/Texts.h"

namespace kv {
namespace {

constexpr int kLinesPerTurn = 256;
constexpr std::int64_t kMostAddress = 1'000'000;  // far behind the last of any model

// "TIMER PRESET 0..9"
struct OperandSpan {
  std::string type;
  std::int64_t from = 0;
  std::int64_t to = 0;
  bool isWholeType = false;
};

OperandSpan SpanOf(std::string_view text) {
  std::string upper = UpperCased(TrimBlanks(text));
  std::ranges::replace(upper, '-', ' ');
  const std::size_t blank = upper.rfind(' ');
  const std::string_view digits =
      blank == std::string::npos ? std::string_view() : std::string_view(upper).substr(blank + 1);
  const std::size_t dots = digits.find("..");
  const auto from = ParseInteger(digits.substr(0, dots));
  const auto to = dots == std::string_view::npos ? from : ParseInteger(digits.substr(dots + 2));
  const bool isRange = from && to && *from <= kMostAddress && *to <= kMostAddress;
  if (!isRange) return {.type = upper, .from = 0, .to = 0, .isWholeType = true};
  return {upper.substr(0, blank), *from, *to, false};
}

bool Touches(const OperandSpan& wanted, const OperandSpan& changed) {
  if (wanted.type != changed.type) return false;
  return wanted.isWholeType || changed.isWholeType || (wanted.from <= changed.to && changed.from <= wanted.to);
}

// Texts that an office program would take for a formula are marked as texts.
std::string CsvField(std::string_view text) {
  const bool isFormula = text.starts_with('=') || text.starts_with('+') || text.starts_with('@') ||
                         (text.starts_with('-') && !ParseInteger(text) && !ParseFloat(text));
  std::string field = isFormula ? "'" : "";
  field += text;
  if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
  std::string quoted = "\"";
  for (const char c : field) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::string CsvLine(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (line.empty() ? "" : ",") + CsvField(field);
  return line + "\r\n";
}

// One operand of an operation, with its values.
struct OperandChange {
  std::string operand;
  std::string before;
  std::string after;
  bool hasValues = false;
};

std::vector<OperandChange> ChangesOf(const ChangedOperands& operands) {
  const OperandSpan span = SpanOf(operands.operands);
  if (operands.after.empty() || span.isWholeType) return {{operands.operands, "", "", false}};
  const std::string type = operands.operands.substr(0, span.type.size());
  std::vector<OperandChange> changes;
  for (std::size_t i = 0; i < operands.after.size(); ++i) {
    changes.push_back({type + " " + std::to_string(span.from + static_cast<std::int64_t>(i)),
                       i < operands.before.size() ? operands.before[i] : "", operands.after[i], true});
  }
  return changes;
}

std::string SerialText(const ControllerName& controller) {
  return controller.serialNumber ? std::to_string(*controller.serialNumber) : "";
}

void AddCsvLines(std::string& csv, const JournalEntry& entry) {
  const JournalRecord& record = entry.record;
  std::vector<OperandChange> changes;
  for (const ChangedOperands& each : record.operands) std::ranges::move(ChangesOf(each), std::back_inserter(changes));
  if (changes.empty()) changes.emplace_back();
  for (const OperandChange& change : changes) {
    csv += CsvLine({std::to_string(record.number), record.time, record.user, record.controller.model,
                    SerialText(record.controller), record.controller.project, record.link, record.tool, entry.What(),
                    change.operand, change.before, change.after, entry.Result(), entry.end ? entry.end->time : "",
                    record.reason});
  }
}

// The entries of a journal while it is read; those that are wanted, the newest.
class Entries {
 public:
  explicit Entries(const JournalFilter& filter) : mFilter(filter) {}

  // `bytes`: of its line.
  void Take(JournalRecord record, std::size_t bytes) {
    if (record.kind == RecordKind::End) {
      const auto begun = mEntries.find(record.of);
      if (begun != mEntries.end()) begun->second.entry.end = std::move(record);
      return;
    }
    JournalEntry entry{std::move(record), {}};
    if (!mFilter.Wants(entry)) return;
    const std::uint64_t number = entry.record.number;
    Kept& kept = mEntries[number];
    mBytes += bytes - kept.bytes;
    kept = {std::move(entry), bytes};
    while (mEntries.size() > kMostJournalEntries || mBytes > kMostJournalBytes) DropOldest();
  }

  [[nodiscard]] JournalListing Finish(std::uint64_t unreadable) && {
    JournalListing listing{.entries = {}, .left = mLeft, .unreadable = unreadable};
    for (auto& [number, kept] : mEntries) listing.entries.push_back(std::move(kept.entry));
    return listing;
  }

 private:
  struct Kept {
    JournalEntry entry;
    std::size_t bytes = 0;
  };

  void DropOldest() {
    mBytes -= mEntries.begin()->second.bytes;
    mEntries.erase(mEntries.begin());
    ++mLeft;
  }

  const JournalFilter& mFilter;
  std::map<std::uint64_t, Kept> mEntries;
  std::size_t mBytes = 0;
  std::uint64_t mLeft = 0;
};

}  // namespace

std::string JournalEntry::Moment() const {
  constexpr std::size_t kToSeconds = 19;
  std::string moment = record.time.substr(0, kToSeconds);
  std::ranges::replace(moment, 'T', ' ');
  return moment;
}

std::string JournalEntry::Controller() const {
  const ControllerName& name = record.controller;
  std::string text = name.model;
  if (name.serialNumber) text += (text.empty() ? "" : ", ") + ("serial number " + SerialText(name));
  if (!name.project.empty()) text += (text.empty() ? "" : ", ") + ("project " + name.project);
  return text;
}

std::string JournalEntry::What() const {
  switch (record.kind) {
    case RecordKind::Begin:
      return record.what;
    case RecordKind::Start:
      return "the journal begins";
    case RecordKind::Segment:
      return "the journal goes on in another file: " + record.detail;
    case RecordKind::End:
    case RecordKind::Repair:
    case RecordKind::Finding:
    case RecordKind::Unrecorded:
      break;
  }
  return record.detail;
}

std::string JournalEntry::Result() const {
  if (!IsOperation()) return "";
  if (!end) return "begun, and not ended";
  return end->detail.empty() ? end->result : end->result + ": " + end->detail;
}

bool JournalFilter::Wants(const JournalEntry& entry) const {
  const JournalRecord& record = entry.record;
  if (!day.empty() && !record.time.starts_with(day)) return false;
  if (!user.empty() && !UpperCased(record.user).contains(UpperCased(user))) return false;
  if (operand.empty()) return true;
  return std::ranges::any_of(record.operands, [wanted = SpanOf(operand)](const ChangedOperands& each) {
    return Touches(wanted, SpanOf(each.operands));
  });
}

JournalListing ListJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer, const JournalFilter& filter) {
  Entries entries(filter);
  std::uint64_t unreadable = 0;
  for (const JournalSnapshot::Segment& segment : TakeSnapshot(places, disk, pacer).segments) {
    const auto file = disk.Open(SegmentFile(places.folder, segment.number), JournalDisk::Access::Read);
    if (!file) {
      ++unreadable;
      continue;
    }
    JournalLines lines(**file, 0, segment.length);
    for (int i = 1; lines.Next(); ++i) {
      if (auto read = ParseRecord(lines.Line())) {
        entries.Take(std::move(read->record), lines.Line().size());
      } else {
        ++unreadable;
      }
      if (i % kLinesPerTurn == 0) pacer.Turn();
    }
  }
  return std::move(entries).Finish(unreadable);
}

std::vector<std::string> OperandLines(const JournalEntry& entry) {
  std::vector<std::string> lines;
  for (const ChangedOperands& each : entry.record.operands) {
    for (const OperandChange& change : ChangesOf(each)) {
      const std::string before = change.before.empty() ? "not known" : change.before;
      lines.push_back(change.hasValues ? change.operand + ": " + before + " -> " + change.after : change.operand);
    }
  }
  return lines;
}

std::string JournalCsv(const JournalListing& listing, const JournalCheck& check) {
  std::string csv =
      "\xEF\xBB\xBF" + CsvLine({"Number", "Time", "User", "Model", "Serial Number", "Project", "Link", "Tool",
                                "Operation", "Operand", "Before", "After", "Result", "Ended", "Reason"});
  for (const JournalEntry& entry : listing.entries) AddCsvLines(csv, entry);
  if (check.head) {
    csv += CsvLine({std::to_string(check.head->number), "", "", "", "", "", "", "", "head of the journal", "", "", "",
                    check.head->hash});
  }
  return csv;
}

}  // namespace kv
