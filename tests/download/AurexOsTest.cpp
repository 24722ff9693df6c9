// The O/S of an Aurex controller: what is asked, what is sent, and what is left when it is cut.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"

namespace kv::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(AurexOs, EachVersionHasItsOwnQuestions) {
  struct Row {
    int installed;
    int next;
    bool changesBootLoader;
    bool losesDataTypes;
    bool savesMemory;
  };
  const Row rows[] = {
      {110, 110, false, false, false}, {110, 111, true, false, false},  {111, 112, false, false, false},
      {200, 201, true, false, false},  {201, 250, false, false, false}, {250, 251, true, false, false},
      {290, 291, true, false, false},  {291, 373, false, false, false}, {373, 374, true, true, true},
      {374, 475, false, false, false}, {300, 299, false, true, false},  {299, 298, false, false, false},
      {374, 373, false, true, false},  {373, 372, false, false, false}, {299, 374, true, true, true},
      {300, 374, true, true, true},    {109, 290, true, false, false},  {475, 460, false, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.installed) + " to " + std::to_string(row.next));
    const AurexOsChange change{row.installed, row.next, false};
    EXPECT_EQ(change.ChangesBootLoader(), row.changesBootLoader);
    EXPECT_EQ(change.LosesDataTypes(), row.losesDataTypes);
    EXPECT_EQ(change.NeedsMemorySaved(), row.savesMemory);
    EXPECT_EQ(change.RefusesFonts(129), row.next >= 374);
    EXPECT_FALSE(change.RefusesFonts(130));
    std::string losses;
    for (const std::string& sentence : change.Losses()) losses += sentence;
    EXPECT_EQ(losses.contains("written back"), row.savesMemory);
    EXPECT_EQ(losses.contains("values of the operands are lost all the same"), row.savesMemory && row.installed < 300);
    EXPECT_EQ(losses.contains("project may be erased"), row.changesBootLoader && !row.savesMemory);
    EXPECT_EQ(losses.contains("stay as they are"), !row.changesBootLoader && !row.losesDataTypes);
    const AurexOsChange fromBoot{row.installed, row.next, true};
    EXPECT_TRUE(fromBoot.ChangesBootLoader() && fromBoot.LosesDataTypes() && !fromBoot.NeedsMemorySaved());
  }
}

// The boxes and their order are those of the record.
TEST(AurexOs, EverythingIsAskedInItsOrderAndNothingIsSentBefore) {
  struct Row {
    const char* installed;
    bool isInBoot;
    const char* next;
    const char* fonts;
    std::size_t noAt;  // the box that is answered with No; 0: none
    DownloadEnd end;
  };
  using enum DownloadEnd;
  // clang-format off: one row a line
  const Row rows[] = {
      {"4.60", false, "4.75", "1.30", 0, Done},
      {"4.60", false, "4.75", "1.30", 1, Declined},
      {"3.73", false, "3.74", "1.29", 0, Refused},
      {"3.73", false, "3.74", "1.30", 0, Done},
      {"3.73", false, "3.74", "1.30", 3, Declined},
      {"3.73", false, "3.74", "1.30", 2, Declined},
      {"3.73", false, "3.74", "1.30", 4, Stopped},
      {"2.00", false, "2.01", "1.29", 0, Done},
      {"2.01", false, "2.50", "1.29", 0, Done},
      {"4.60", true, "4.75", "1.30", 0, Done},
      {"4.75", false, "4.60", "1.30", 1, Declined},
      {"4.75", false, "4.60", "1.30", 0, Done},
  };
  // clang-format on
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.installed) + " to " + row.next + " at " + std::to_string(row.noAt));
    AurexOsFixture fixture(Plc("K220-22-R1", row.installed, row.isInBoot));
    fixture.Put({row.next, 3}, {row.fonts, 0});
    const bool isForced = row.end == Done && std::string_view(row.installed) == "3.73";
    if (isForced) fixture.controller->Tell("WO00000201F500010100000000");
    fixture.desk.declinedAt = row.noAt;
    if (row.noAt == 2) fixture.desk.bios = BiosAnswer::Abort;
    const std::string before = fixture.Memory();
    int waits = 0;  // of 4 seconds, in which nothing is sent
    fixture.controller->onText = [&, last = fixture.pacer.Now()](std::string_view, auto&) mutable {
      const Duration gap = fixture.pacer.Now() - std::exchange(last, fixture.pacer.Now());
      waits += gap == std::chrono::seconds(4) ? 1 : 0;
    };
    (void)fixture.Download();
    EXPECT_EQ(fixture.outcome.end, row.end) << fixture.outcome.reason;
    if (row.end != Done) {
      EXPECT_THAT(fixture.controller->told, IsEmpty());
      continue;
    }
    EXPECT_THAT(fixture.controller->Truth(), HasSubstr(std::string("|") + row.next + "|03|R"));
    if (isForced) {
      EXPECT_EQ(waits, 2) << "before the bit and before the memory";
      EXPECT_EQ(fixture.Memory(), before) << "it is back";
      EXPECT_TRUE(std::filesystem::is_empty(fixture.paths.Temporary()));
    }
  }
}

}  // namespace
}  // namespace kv::test
