#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <string>

#include "apps/kvtele/Verb.h"
#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "desktop/UserName.h"
#include "journal/Acknowledgement.h"
#include "journal/JournalList.h"
#include "sessions/SessionManager.h"

namespace kv::cli {

namespace {

// Shows the journal of changes of a session, and checks it.
class VerbJournal : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "journal"; }
  [[nodiscard]] const char* Summary() const override {
    return "Who changed what: list and check the journal of changes";
  }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<void> CheckArguments() const;
  [[nodiscard]] VerbResult List(Environment& environment, const JournalPlaces& places) const;
  [[nodiscard]] VerbResult Check(Environment& environment, const JournalPlaces& places) const;
  [[nodiscard]] VerbResult Acknowledge(Environment& environment, const CommonOptions& common,
                                       const JournalPlaces& places) const;

  std::string mAction;
  JournalFilter mFilter;
  std::string mCsv;
  std::string mExpected;
};

JournalDisk& DiskOf(const Environment& environment) {
  return environment.journalDisk != nullptr ? *environment.journalDisk : SystemJournalDisk();
}

OrFailure<JournalPlaces> PlacesOf(const Environment& environment, const CommonOptions& common) {
  if (const std::string fault = SessionNameFault(common.session); !fault.empty()) {
    return std::unexpected(UsageFailure(fault));
  }
  const std::filesystem::path folder = common.paths.Session(common.session);
  std::error_code ignored;
  if (std::filesystem::is_directory(folder, ignored)) return JournalPlaces{folder, environment.stateFolder};
  return std::unexpected(UsageFailure("there is no session \"" + common.session + "\"", "see kvtele sessions list"));
}

nlohmann::ordered_json ValuesJson(const JournalRecord& record) {
  auto all = nlohmann::ordered_json::array();
  for (const ChangedOperands& each : record.operands) {
    all.push_back({{"operands", each.operands}, {"before", each.before}, {"after", each.after}});
  }
  return all;
}

nlohmann::ordered_json EntryJson(const JournalEntry& entry) {
  const JournalRecord& record = entry.record;
  nlohmann::ordered_json serial;
  if (record.controller.serialNumber) serial = *record.controller.serialNumber;
  nlohmann::ordered_json json = {
      {"number", record.number},
      {"time", record.time},
      {"user", record.user},
      {"controller",
       {{"model", record.controller.model}, {"serialNumber", serial}, {"project", record.controller.project}}},
      {"link", record.link},
      {"tool", record.tool},
      {"what", entry.What()},
      {"values", ValuesJson(record)},
      {"reason", record.reason}};
  if (!entry.IsOperation()) return json;
  json["result"] = entry.end ? entry.end->result : "open";
  json["detail"] = entry.end ? entry.end->detail : "";
  json["ended"] = entry.end ? entry.end->time : "";
  return json;
}

// A journal may hold what somebody else has put into it; an entry is one line.
std::string OneLine(std::string text) {
  std::ranges::replace_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}

std::string EntryText(const JournalEntry& entry) {
  const JournalRecord& record = entry.record;
  const std::string what = (record.tool.empty() ? "" : record.tool + ": ") + entry.What();
  std::string text = std::to_string(record.number);
  for (const std::string& field : {record.time, record.user, entry.Controller(), record.link, what, entry.Result()}) {
    text += "\t" + OneLine(field);
  }
  text += "\n";
  if (!record.reason.empty()) text += "\treason: " + OneLine(record.reason) + "\n";
  for (const std::string& line : OperandLines(entry)) text += "\t" + OneLine(line) + "\n";
  return text;
}

Failure CannotSave(const FileError& error) {
  return {ExitCode::BadFile, "badFile", "exporting the journal of changes", error.Text(), {}, {}};
}

// A script must not take a list that lacks something for a whole one.
ExitCode ExitOf(const JournalListing& listing) {
  return listing.unreadable > 0 ? ExitCode::Differs : ExitCode::Done;
}

nlohmann::ordered_json FindingsJson(const std::vector<JournalCheck::Finding>& findings) {
  auto all = nlohmann::ordered_json::array();
  for (const JournalCheck::Finding& each : findings) {
    all.push_back({{"fault", FaultWord(each.fault)}, {"record", each.number}, {"text", each.text}});
  }
  return all;
}

const char* VerbJournal::Examples() const {
  return "  kvtele journal list                              each change, with the values before and after\n"
         "  kvtele journal list --operand \"MI 5\" --by anna    of one operand, by one user\n"
         "  kvtele journal list --day 2026-11-22 --csv f.csv as a table for office programs\n"
         "  kvtele journal check                             is it as it was written?\n"
         "  kvtele journal check --expect HASH,COUNT         and does it hold the record with this head?\n"
         "  kvtele --reason \"session made anew\" journal acknowledge\n"
         "                                                   what the check finds was looked at, and why it is so\n";
}

void VerbJournal::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "list, check or acknowledge")
      ->required()
      ->check(CLI::IsMember({"list", "check", "acknowledge"}));
  app.add_option("--operand", mFilter.operand, "With list: changes of \"MI 5\", \"MI 0..9\" or MI")
      ->type_name("OPERAND");
  app.add_option("--by", mFilter.user, "With list: changes by this user, or a part of the name")->type_name("NAME");
  app.add_option("--day", mFilter.day, "With list: changes of 2026-11-22, or of 2026-11")->type_name("DAY");
  app.add_option("--csv", mCsv, "With list: a file that gets a line for each operand")->type_name("FILE");
  app.add_option("--expect", mExpected, "With check: hash and number of a record, as kvtele prints them")
      ->type_name("HASH,COUNT");
}

OrFailure<void> VerbJournal::CheckArguments() const {
  const bool isList = mAction == "list";
  const bool filters = !mFilter.operand.empty() || !mFilter.user.empty() || !mFilter.day.empty() || !mCsv.empty();
  if (!isList && filters) return std::unexpected(UsageFailure("--operand, --by, --day and --csv go with list"));
  if (mAction != "check" && !mExpected.empty()) return std::unexpected(UsageFailure("--expect goes with check"));
  if (const std::string fault = mFilter.Fault(); !fault.empty()) return std::unexpected(UsageFailure(fault));
  if (!mExpected.empty() && !ParseAnchor(mExpected)) {
    return std::unexpected(UsageFailure("\"" + mExpected + "\" is no head of a journal",
                                        "give its hash, 64 digits, and the number of the record: HASH,COUNT"));
  }
  return {};
}

VerbResult VerbJournal::Run(Environment& environment, const CommonOptions& common) {
  if (const auto checked = CheckArguments(); !checked) return std::unexpected(checked.error());
  const auto places = PlacesOf(environment, common);
  if (!places) return std::unexpected(places.error());
  if (mAction == "acknowledge") return Acknowledge(environment, common, *places);
  return mAction == "list" ? List(environment, *places) : Check(environment, *places);
}

VerbResult VerbJournal::List(Environment& environment, const JournalPlaces& places) const {
  const JournalListing listing = ListJournal(places, DiskOf(environment), environment.pacer, mFilter);
  if (listing.left > 0) environment.err << listing.left << " older entries are left out.\n";
  if (listing.unreadable > 0) {
    environment.err << Counted(listing.unreadable, "line is", "lines are") << " no records, the first behind record "
                    << listing.readBefore << ": what they told is not in this list. See kvtele journal check.\n";
  }
  if (!mCsv.empty()) {
    const JournalCheck check = CheckJournal(places, DiskOf(environment), environment.pacer);
    const auto saved = SaveAtomically(PathFromUtf8(mCsv), JournalCsv(listing, check));
    if (!saved) return std::unexpected(CannotSave(saved.error()));
    environment.err << VerdictText(check) << "\n";
    return VerbOutput{"", {{"exported", mCsv}, {"entries", listing.entries.size()}}, ExitOf(listing)};
  }
  VerbOutput output{"", {{"entries", nlohmann::ordered_json::array()}}, ExitOf(listing)};
  for (const JournalEntry& entry : listing.entries) {
    output.text += EntryText(entry);
    output.document["entries"].push_back(EntryJson(entry));
  }
  return output;
}

VerbResult VerbJournal::Check(Environment& environment, const JournalPlaces& places) const {
  std::vector<JournalAnchor> anchors;
  if (const auto expected = ParseAnchor(mExpected)) anchors.push_back(*expected);
  const JournalCheck check = CheckJournal(places, DiskOf(environment), environment.pacer, std::move(anchors));
  VerbOutput output;
  output.text = VerdictText(check) + "\n";
  for (const std::string& line : CheckLines(check)) output.text += line + "\n";
  if (check.head) output.text += "Head: " + HeadText(check.head->number, check.head->hash) + "\n";
  output.document = {{"sound", check.IsSound()},
                     {"anchored", check.IsAnchored()},
                     {"records", check.records},
                     {"head", check.head ? check.head->hash : ""},
                     {"number", check.head ? check.head->number : 0},
                     {"findings", FindingsJson(check.findings)},
                     {"moreFindings", check.moreFindings},
                     {"acknowledged", FindingsJson(check.acknowledged)},
                     {"behindHead", check.behindHead},
                     {"headDamaged", check.isHeadDamaged},
                     {"tornBytes", check.tornBytes},
                     {"begunAndNotEnded", check.openRecords},
                     {"clockSetBack", check.clockBack}};
  // Nothing is wrong, but a missing end would not have been found: a script must not take that for a proof.
  output.exit = !check.IsSound() ? ExitCode::Differs : check.IsAnchored() ? ExitCode::Done : ExitCode::Failed;
  return output;
}

VerbResult VerbJournal::Acknowledge(Environment& environment, const CommonOptions& common,
                                    const JournalPlaces& places) const {
  if (common.reason.empty()) {
    return std::unexpected(
        UsageFailure("acknowledge needs a reason", "give --reason TEXT, and see kvtele journal check"));
  }
  const Acknowledgement by{common.user.empty() ? UserName() : common.user, common.reason};
  const auto number = AcknowledgeFindings(places, DiskOf(environment), environment.pacer, environment.clock, by);
  if (!number) {
    return std::unexpected(Failure{ExitCode::Failed,
                                   "notAcknowledged",
                                   "acknowledging what the check of the journal finds",
                                   number.error(),
                                   {},
                                   "see kvtele journal check"});
  }
  environment.err << "Recorded in record " << *number << " of the change journal.\n";
  return Check(environment, places);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbJournal() {
  return std::make_unique<VerbJournal>();
}

}  // namespace kv::cli
