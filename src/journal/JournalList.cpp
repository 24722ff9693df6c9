#include "journal/JournalList.h"

#include <algorithm>
#include <chrono>
#include <map>

#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"

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

// Whether the i-th operand was written with the value that it had.
bool IsUnchanged(const ChangedOperands& operands, std::size_t i) {
  return i < operands.before.size() && i < operands.after.size() && !operands.before[i].empty() &&
         operands.before[i] == operands.after[i];
}

bool Touches(const OperandSpan& wanted, const ChangedOperands& operands) {
  const OperandSpan changed = SpanOf(operands.operands);
  if (wanted.type != changed.type) return false;
  if (changed.isWholeType) return true;
  const std::int64_t from = wanted.isWholeType ? changed.from : std::max(wanted.from, changed.from);
  const std::int64_t to = wanted.isWholeType ? changed.to : std::min(wanted.to, changed.to);
  for (std::int64_t address = from; address <= to; ++address) {
    if (!IsUnchanged(operands, static_cast<std::size_t>(address - changed.from))) return true;
  }
  return false;
}

std::string FaultOfOperand(const std::string& operand) {
  if (operand.empty()) return "";
  const OperandSpan span = SpanOf(operand);
  if (mdlDataTypesView::TypeFromName(span.type) && span.from <= span.to) return "";
  return "\"" + operand + "\" is no operand: enter MI 5, MI 0..9 or MI.";
}

// Whoever types a day has the beginning of one first.
bool IsDayOrItsBeginning(std::string_view day) {
  constexpr std::string_view kForm = "dddd-dd-dd";
  if (day.size() > kForm.size()) return false;
  for (std::size_t i = 0; i < day.size(); ++i) {
    const bool isDigit = day[i] >= '0' && day[i] <= '9';
    if (kForm[i] == 'd' ? !isDigit : day[i] != kForm[i]) return false;
  }
  const auto number = [&](std::size_t at, std::size_t count) {  // 1 where it is not all there yet
    return day.size() < at + count ? 1 : static_cast<int>(ParseInteger(day.substr(at, count)).value_or(0));
  };
  const std::chrono::year_month_day date(std::chrono::year(number(0, 4)),
                                         std::chrono::month(static_cast<unsigned>(number(5, 2))),
                                         std::chrono::day(static_cast<unsigned>(number(8, 2))));
  return date.ok();
}

std::string FaultOfDay(const std::string& day) {
  if (IsDayOrItsBeginning(day)) return "";
  return "\"" + day + "\" is no day: enter 2026-11-22, or 2026-11.";
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
  bool isUnchanged = false;
};

std::vector<OperandChange> ChangesOf(const ChangedOperands& operands) {
  const OperandSpan span = SpanOf(operands.operands);
  if (operands.after.empty() || span.isWholeType) return {{operands.operands, "", "", false, false}};
  const std::string type = operands.operands.substr(0, span.type.size());
  std::vector<OperandChange> changes;
  for (std::size_t i = 0; i < operands.after.size(); ++i) {
    changes.push_back({type + " " + std::to_string(span.from + static_cast<std::int64_t>(i)),
                       i < operands.before.size() ? operands.before[i] : "", operands.after[i], true,
                       IsUnchanged(operands, i)});
  }
  return changes;
}

// "MI 4..9, MI 12": those that are unchanged.
std::string UnchangedText(const ChangedOperands& operands) {
  const OperandSpan span = SpanOf(operands.operands);
  const std::string type = operands.operands.substr(0, span.type.size());
  std::string text;
  for (std::size_t i = 0; i < operands.after.size(); ++i) {
    if (!IsUnchanged(operands, i)) continue;
    const std::size_t first = i;
    while (IsUnchanged(operands, i + 1)) ++i;
    const auto at = [&span](std::size_t index) { return std::to_string(span.from + static_cast<std::int64_t>(index)); };
    text += (text.empty() ? "" : ", ") + type + " " + at(first) + (i > first ? ".." + at(i) : "");
  }
  return text;
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
  explicit Entries(const JournalFilter& filter) : mFilter(filter), mIsUnderstood(filter.Fault().empty()) {}

  // `bytes`: of its line.
  void Take(JournalRecord record, std::size_t bytes) {
    if (record.kind == RecordKind::End) {
      const auto begun = mEntries.find(record.of);
      // The first one: a second is none that the programs write.
      if (begun != mEntries.end() && !begun->second.entry.end) begun->second.entry.end = std::move(record);
      return;
    }
    JournalEntry entry{std::move(record), {}};
    if (!mIsUnderstood || !mFilter.Wants(entry)) return;
    const std::uint64_t number = entry.record.number;
    Kept& kept = mEntries[number];
    mBytes += bytes - kept.bytes;
    kept = {std::move(entry), bytes};
    while (mEntries.size() > mFilter.most || mBytes > kMostJournalBytes) DropOldest();
  }

  [[nodiscard]] JournalListing Finish(JournalListing listing) && {
    listing.left = mLeft;
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
  bool mIsUnderstood;
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
    case RecordKind::Acknowledged:
      return Counted(record.count, "finding") + " of the check acknowledged";
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
  return std::ranges::any_of(record.operands,
                             [wanted = SpanOf(operand)](const ChangedOperands& each) { return Touches(wanted, each); });
}

std::string JournalFilter::Fault() const {
  const std::string fault = FaultOfOperand(operand);
  return fault.empty() ? FaultOfDay(day) : fault;
}

JournalListing ListJournal(const JournalPlaces& places, JournalDisk& disk, Pacer& pacer, const JournalFilter& filter) {
  Entries entries(filter);
  JournalListing unread;  // what is known of the lines that are no records
  std::uint64_t last = 0;
  for (const JournalSnapshot::Segment& segment : TakeSnapshot(places, disk, pacer).segments) {
    const auto file = disk.Open(SegmentFile(places.folder, segment.number), JournalDisk::Access::Read);
    if (!file) {
      if (unread.unreadable++ == 0) unread.readBefore = last;
      continue;
    }
    JournalLines lines(**file, 0, segment.length);
    for (int i = 1; lines.Next(); ++i) {
      if (auto read = ParseRecord(lines.Line())) {
        last = read->record.number;
        entries.Take(std::move(read->record), lines.Line().size());
      } else if (unread.unreadable++ == 0) {
        unread.readBefore = last;
      }
      if (i % kLinesPerTurn == 0) pacer.Turn();
    }
  }
  return std::move(entries).Finish(std::move(unread));
}

std::vector<std::string> OperandLines(const JournalEntry& entry) {
  std::vector<std::string> lines;
  std::string unchanged;
  for (const ChangedOperands& each : entry.record.operands) {
    for (const OperandChange& change : ChangesOf(each)) {
      if (change.isUnchanged) continue;
      const std::string before = change.before.empty() ? "not known" : change.before;
      lines.push_back(change.hasValues ? change.operand + ": " + before + " -> " + change.after : change.operand);
    }
    const std::string same = UnchangedText(each);
    if (!same.empty()) unchanged += (unchanged.empty() ? "unchanged: " : ", ") + same;
  }
  if (!unchanged.empty()) lines.push_back(unchanged);
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
