#include "journal/JournalList.h"

#include "tests/journal/JournalFixture.h"

namespace kv {
namespace {

struct JournalListTest : testing::Test, test::JournalFixture {
  JournalListTest() {
    pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2026} / 11 / 22} + std::chrono::hours(8));
    Add("anna", {{"MI 0..1", {"1", ""}, {"2", "-3"}},
                 {"MI 5..9", {"1", "1", "2", "2", "2"}, {"1", "1", "3", "2", "2"}},
                 {"TIMER PRESET 7", {"00:00:01.00"}, {"00:00:02.00"}}});
    pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2026} / 11 / 23});
    Add("Hans", {});
    (void)Begin("begun and no more");
  }
  void Add(const std::string& user, std::vector<ChangedOperands> operands) {
    JournalRecord record{.kind = RecordKind::Begin, .user = user, .what = "write, \"all\""};
    record.controller = {"K220-22-R1", 305419896, "=Mixer"};
    record.operands = std::move(operands);
    (void)End(journal->Append(record).value_or(0));
  }
  [[nodiscard]] JournalListing List(const JournalFilter& filter) {
    const JournalListing listing = ListJournal(places, disk, pacer, filter);
    test::ExpectAsRecorded([&] { return WithoutHashes(JournalCsv(listing, Check())); });
    return listing;
  }
};

TEST_F(JournalListTest, Filters) {
  struct Case {
    JournalFilter filter;
    std::vector<std::uint64_t> numbers;
  };
  const Case cases[] = {
      {{}, {1, 2, 4, 6}},
      {{.operand = "MI 1"}, {2, 6}},
      {{.operand = "mi 1..9"}, {2, 6}},
      {{.operand = "MI"}, {2, 6}},
      {{.operand = "MI 2"}, {}},
      {{.operand = "MI 6"}, {}},  // written with the value that it had
      {{.operand = "MI 6..7"}, {2}},
      {{.operand = "recipe"}, {}},
      {{.day = "22.11.2026"}, {}},
      {{.operand = "timer-preset 7"}, {2}},
      {{.user = "ANN"}, {2, 6}},
      {{.operand = "MI", .user = "hans"}, {}},
      {{.day = "2026-11-23"}, {4, 6}},
      {{.day = "2026-11"}, {1, 2, 4, 6}},
      {{.most = 4}, {1, 2, 4, 6}},
      {{.most = 3}, {2, 4, 6}},
  };
  for (const Case& each : cases) {
    std::vector<std::uint64_t> numbers;
    for (const JournalEntry& entry : List(each.filter).entries) numbers.push_back(entry.record.number);
    EXPECT_EQ(numbers, each.numbers) << each.filter.operand << "|" << each.filter.user << "|" << each.filter.day;
  }
  EXPECT_EQ(List({.most = 1}).left, 3U);
  EXPECT_EQ(JournalFilter{.operand = "recipe"}.Fault(), "\"recipe\" is no operand: enter MI 5, MI 0..9 or MI.");
  EXPECT_EQ(JournalFilter{.day = "22.11.2026"}.Fault(), "\"22.11.2026\" is no day: enter 2026-11-22, or 2026-11.");
  for (const char* never : {"2026-13", "2026-02-30", "2026-11-00"}) EXPECT_NE(JournalFilter{.day = never}.Fault(), "");
  EXPECT_EQ((JournalFilter{.operand = "timer-preset 7", .day = "2026-1"}.Fault()), "");
}

TEST_F(JournalListTest, TellsFromWhichValueToWhich) {
  const auto entries = List({}).entries;
  EXPECT_THAT(OperandLines(entries[1]),
              testing::ElementsAre("MI 0: 1 -> 2", "MI 1: not known -> -3", "MI 7: 2 -> 3",
                                   "TIMER PRESET 7: 00:00:01.00 -> 00:00:02.00", "unchanged: MI 5..6, MI 8..9"));
  EXPECT_EQ(entries[1].Result(), "done");
  EXPECT_EQ(entries[3].Result(), "begun, and not ended");
  EXPECT_EQ(entries[1].Controller(), "K220-22-R1, serial number 305419896, project =Mixer");
}

TEST_F(JournalListTest, ExportsATableWithTheHead) {
  const std::string csv = JournalCsv(List({.user = "anna"}), Check());
  EXPECT_THAT(csv, testing::HasSubstr("\r\n2,2026-11-22T08:00:00.000+01:00,anna,K220-22-R1,305419896,'=Mixer,,,"
                                      "\"write, \"\"all\"\"\",MI 0,1,2,done,2026-11-22T08:00:00.000+01:00,\r\n"));
  EXPECT_THAT(csv, testing::HasSubstr(",MI 1,,-3,done,"));
  EXPECT_THAT(csv, testing::HasSubstr("head of the journal,,,," + Check().head->hash + "\r\n"));
}

}  // namespace
}  // namespace kv
