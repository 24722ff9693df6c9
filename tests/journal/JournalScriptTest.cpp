// Journals as programs, crashes and people leave them, and all that is told of each. The record holds what is done
// ("== WHAT" with a new journal, "$ STEP TEXT") and below it what came of it, so that a new case is a line there. In a
// text "<3*a>" stands for "aaa", and "<0A>" for that byte.

#include <map>

#include "base/Hex.h"
#include "base/Texts.h"
#include "digest/Sha256.h"
#include "journal/Acknowledgement.h"
#include "journal/JournalList.h"
#include "tests/journal/JournalFixture.h"

namespace kv::test {
namespace {

namespace fs = std::filesystem;

std::string Unpacked(std::string text) {
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
    const std::size_t end = text.find('>', at);
    const std::string what = text.substr(at + 1, end - at - 1);
    std::string bytes(1, static_cast<char>(ParseHex(what).value_or(0)));
    if (what.contains('*')) bytes.assign(std::stoul(what), what.back());
    text.replace(at, end + 1 - at, bytes);
    at += bytes.size();
  }
  return text;
}

// What stands many times in a row is written once, and what is no character as Unpacked takes it.
std::string Packed(const std::string& text) {
  constexpr std::size_t kFew = 20;
  std::string packed;
  for (std::size_t at = 0, count = 0; at < text.size(); at += count) {
    count = std::min(text.find_first_not_of(text[at], at), text.size()) - at;
    const std::string run = text.substr(at, count);
    packed += count > kFew       ? "<" + std::to_string(count) + "*" + Shown(run.substr(0, 1)) + ">"
              : text[at] == '\n' ? run
                                 : Shown(run);
  }
  return packed;
}

std::string AllBytes(const JournalFixture& journal) {
  std::string all;
  for (const unsigned segment : SegmentsIn(journal.places.folder)) all += journal.Bytes(segment);
  return all;
}

// A text as a record with its hash; PREV stands for that of the record before it, NAME for that of the journal.
std::string Sealed(const JournalFixture& journal, const std::string& json) {
  std::string before = "\n";
  for (const unsigned segment : SegmentsIn(journal.places.folder)) {
    const std::string bytes = journal.Bytes(segment);
    before += bytes.substr(0, bytes.rfind('\n') + 1);
  }
  const std::size_t line = before.rfind('\n', before.rfind('\n') - 1) + 1;
  constexpr std::size_t kName = 32;
  const std::size_t name = std::min(before.find("\"journal\":\"") + 11, before.size());
  const std::string text = Replaced(Replaced(Unpacked(json), "PREV", before.substr(line, kNoHash.size())), "NAME",
                                    before.substr(name, kName));
  Sha256 digest;
  digest.Add(text);
  return digest.Hex() + " " + text + "\n";
}

std::string PutBehind(const JournalFixture& journal, const std::string& bytes) {
  const unsigned last = SegmentsIn(journal.places.folder).back();
  journal.Put(journal.Bytes(last) + bytes, last);
  return "";
}

// Those from one number to another, each second one.
std::string PutRecords(const JournalFixture& journal, std::string_view text) {
  const std::uint64_t first = std::stoul(std::string(TakeField(text, ' ')));
  const std::uint64_t last = std::stoul(std::string(TakeField(text, ' ')));
  for (std::uint64_t number = first; number <= last; number += 2) {
    PutBehind(journal, Sealed(journal, R"({"n":)" + std::to_string(number) +
                                           R"(,"prev":"PREV","time":"2026-11-22T10:00:00.000+01:00",)" +
                                           std::string(text) + "}"));
  }
  return "";
}

JournalListing ListingOf(JournalFixture& journal, std::string_view text) {
  JournalFilter filter;
  for (std::string* each : {&filter.operand, &filter.user, &filter.day}) *each = TakeField(text, '|');
  if (!text.empty()) filter.most = std::stoul(std::string(text));
  return ListJournal(journal.places, journal.disk, journal.pacer, filter);
}

std::string Listed(JournalFixture& journal, const std::string& filter) {
  const JournalListing listing = ListingOf(journal, filter);
  std::string all;
  for (const JournalEntry& each : listing.entries) {
    all += std::to_string(each.record.number) + "|" + each.Moment() + "|" + each.record.user + "|" + each.Controller() +
           "|" + each.What() + "|" + each.Result() + "|" + each.record.reason + "\n";
    for (const std::string& line : OperandLines(each)) all += "  " + line + "\n";
  }
  return all + std::to_string(listing.left) + " left, " + std::to_string(listing.unreadable) + " unreadable behind " +
         std::to_string(listing.readBefore);
}

// By the program, as it writes its own; a number in front is how often the record has its first run of operands.
std::string Appended(JournalFixture& journal, std::string_view fields) {
  const bool hasRuns = !fields.starts_with('"');
  const std::size_t runs = hasRuns ? std::stoul(std::string(TakeField(fields, ' '))) : 0;
  const std::string line = Sealed(journal, R"({"n":1,)" + std::string(fields) + "}");
  JournalRecord record = ParseRecord(line.substr(0, line.size() - 1)).value().record;
  if (hasRuns) record.operands.assign(runs, ChangedOperands(record.operands.at(0)));
  journal.pacer.Sleep(std::chrono::milliseconds(1001));
  const auto number = journal.journal->Append(record);
  return number ? "record " + std::to_string(*number) + journal.journal->HeadTrouble() : "refused";
}

std::string Acknowledged(JournalFixture& journal, std::string_view text) {
  const std::string user(TakeField(text, '|'));
  const auto number =
      AcknowledgeFindings(journal.places, journal.disk, journal.pacer, journal.pacer, {user, std::string(text)});
  return number ? "record " + std::to_string(*number) : number.error();
}

std::string Checked(JournalFixture& journal, const std::string& anchor) {
  const auto given = ParseAnchor(Replaced(anchor, "HASH", std::string(kNoHash.size(), 'a')));
  const JournalCheck check = journal.Check(given ? std::vector{*given} : std::vector<JournalAnchor>());
  std::string words;
  for (const auto& each : check.findings) words += std::string(FaultWord(each.fault)) + " ";
  return words + journal.Told(check);
}

// Another writer has the lock for so many milliseconds.
std::string Held(JournalFixture& journal, const std::string& time) {
  const std::shared_ptr<JournalFile> lock =
      *journal.disk.Open(LockFile(journal.places.folder), JournalDisk::Access::Replace);
  journal.pacer.After(std::chrono::milliseconds(std::stoi(time)),
                      [lock = std::shared_ptr(lock)]() mutable { lock.reset(); });
  return lock->TryLock().value_or(false) ? "" : "it is taken";
}

// The lines of the first file, in this order.
std::string Ordered(const JournalFixture& journal, const std::string& order) {
  const std::vector<std::string> lines = JournalFixture::LinesOf(journal.Bytes());
  std::string bytes;
  std::istringstream numbers(order);
  for (std::size_t number = 0; numbers >> number;) bytes += lines.at(number - 1);
  journal.Put(bytes);
  return "";
}

// The last record ends at this place of the file, as the head says: what is before it is not there.
std::string Grown(JournalFixture& journal, const std::string& end) {
  const std::string line = JournalFixture::LinesOf(journal.Bytes()).back();
  fs::resize_file(journal.File(), std::stoul(end) - line.size() - 1);
  std::ofstream(journal.File(), std::ios::binary | std::ios::app) << "\n" << line;
  JournalHead head = ReadHead(journal.disk, HeadFile(journal.places)).value();
  head.end = std::stoul(end);
  return WriteHead(journal.disk, HeadFile(journal.places), head) ? "no head" : "";
}

std::string Replacing(const JournalFixture& journal, std::string_view text) {
  const std::string what(TakeField(text, '|'));
  journal.Put(Replaced(journal.Bytes(), what, Unpacked(std::string(text))));
  return "";
}

std::string FilesOf(const JournalFixture& journal) {
  std::string names;
  for (const unsigned segment : SegmentsIn(journal.places.folder))
    names += std::to_string(segment) + ": " + std::to_string(fs::file_size(journal.File(segment))) + " bytes\n";
  return names;
}

using Step = std::function<std::string(JournalFixture&, const std::string& text)>;
const std::map<std::string, Step> kSteps = {
    {"append", Appended},
    {"records", PutRecords},
    {"json", [](auto& j, const auto& text) { return PutBehind(j, Sealed(j, text)); }},
    {"bytes", [](auto& j, const auto& text) { return PutBehind(j, Unpacked(text)); }},
    {"lines", Ordered},
    {"replace", Replacing},
    {"cut", [](auto& j, const auto& size) { return fs::resize_file(j.File(), std::stoul(size)), ""; }},
    {"grow", Grown},
    {"file", [](auto& j, const auto& name) { return std::ofstream(j.places.folder / name), ""; }},
    {"without", [](auto& j, const auto& name) { return fs::remove(j.places.folder / name), ""; }},
    {"no-head", [](auto& j, const auto&) { return fs::remove(HeadFile(j.places)), ""; }},
    {"damage-head",
     [](auto& j, const auto& at) { return std::fstream(HeadFile(j.places)).seekp(std::stol(at)).put('x'), ""; }},
    {"hold", Held},
    {"fail", [](auto& j, const auto& nth) { return j.disk.failAt = j.disk.calls + std::stoi(nth), ""; }},
    {"reopen", [](auto& j, const auto&) { return j.Reopen(), ""; }},
    {"clock",
     [](auto& j, const auto& year) {
       return j.pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{std::stoi(year)} / 1 / 1}), "";
     }},
    {"check", Checked},
    {"acknowledge", Acknowledged},
    {"list", Listed},
    {"csv", [](auto& j, const auto& filter) { return JournalCsv(ListingOf(j, filter), j.Check()); }},
    {"show", [](auto& j, const auto&) { return AllBytes(j); }},
    {"files", [](auto& j, const auto&) { return FilesOf(j); }},
    {"calls", [](auto& j, const auto&) { return std::exchange(j.disk.log, ""); }},
    {"time",
     [](auto& j, const auto&) {
       return std::to_string(j.pacer.Now().time_since_epoch().count()) + " us, " + std::to_string(j.pacer.TurnCount()) +
              " turns";
     }},
};

TEST(JournalScript, TellsTheSameAgain) {
  const std::string written = test::RecordOf("recorded/JournalScript.TellsTheSameAgain.txt").value_or("");
  std::istringstream lines(written);
  std::string again;
  std::unique_ptr<JournalFixture> journal;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("== ")) {
      journal = std::make_unique<JournalFixture>();
      journal->disk.isReal = false;
      for (int i = 0; i < 3; ++i) (void)journal->End(journal->Begin());
    }
    if (line.starts_with("== ") || line.starts_with("$ ")) again += line + "\n";
    if (!line.starts_with("$ ")) continue;
    const std::size_t end = std::min(line.find(' ', 2), line.size());
    const std::string told = kSteps.at(line.substr(2, end - 2))(*journal, line.substr(std::min(end + 1, line.size())));
    if (!told.empty()) again += journal->WithoutHashes(Packed(told)) + "\n";
  }
  ExpectAsRecorded([&] { return again; });
}

}  // namespace
}  // namespace kv::test
