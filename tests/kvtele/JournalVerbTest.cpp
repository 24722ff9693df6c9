#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "journal/JournalFiles.h"
#include "tests/download/Samples.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

struct JournalVerb : ::testing::Test {
  CommandFixture fixture;

  JournalVerb() { fixture.recordsChanges = true; }
  Result On(const std::string& line) { return fixture.On("K220-22-R1", line); }
  [[nodiscard]] std::filesystem::path File() const { return SegmentFile(fixture.home.Path() / "Sessions/Default", 1); }
};

TEST_F(JournalVerb, TellsWhoChangedWhatFromWhichValueToWhich) {
  EXPECT_EQ(On("write MI 0 5 6").exit, 0);
  EXPECT_EQ(On("read MI 0 1").exit, 0);
  const Result written = On("--reason 'new recipe' write MI 0 007 8");
  EXPECT_THAT(written.err, HasSubstr("Recorded in the change journal. Head: 5 "));
  EXPECT_EQ(On("--yes stop").exit, 0);
  EXPECT_EQ(On("--yes clone create @plc.kdf --password pw --no-stop").exit, 0);
  EXPECT_EQ(On("--yes clone restore @plc.kdf").exit, 0);
  fixture.home.Put("hall.dai", SampleProject("K220-22-R1"));
  EXPECT_EQ(On("--yes download project @hall.dai").exit, 0);

  const std::string list = fixture.Run("journal list").out;
  EXPECT_THAT(list, AllOf(HasSubstr("\tSimulated K220-22-R1\tkvtele write: write operands\tdone\n\treason: new recipe\n"
                                    "\tMI 0: 5 -> 7\n\tMI 1: 6 -> 8\n"),
                          HasSubstr("K220-22-R1, serial number "), HasSubstr("\tkvtele stop: stop the program\tdone\n"),
                          HasSubstr("\tCloner: restore the clone " + fixture.PathOf("plc.kdf") + "\tdone\n"),
                          HasSubstr("\tDownloader: download the project " + fixture.PathOf("hall.dai") + "\tdone\n")));
  EXPECT_EQ(std::ranges::count(list, '\n'), 12) << "one record for all requests of an operation: " << list;
  EXPECT_THAT(fixture.Run("journal list --operand 'MI 1'").out, Not(HasSubstr("stop the program")));
  EXPECT_EQ(fixture.Run("journal list --by nobody").out, "");
  EXPECT_THAT(fixture.Run("--json journal list --operand 'MI 0'").out, HasSubstr("\"after\": [\n            \"7\","));
  EXPECT_EQ(fixture.Run("journal list --csv @j.csv").exit, 0);
  EXPECT_THAT(TemporaryFolder::Content(fixture.home.Path() / "j.csv"), HasSubstr(",MI 1,6,8,done,"));
  EXPECT_THAT(TemporaryFolder::Content(fixture.home.Path() / "plc.kdf.manifest"), HasSubstr("\r\nJournal\t"));
}

TEST_F(JournalVerb, TellsWhatWasSentAndHowFarItCame) {
  EXPECT_EQ(On("write timer-preset 0 1").exit, 0);
  EXPECT_EQ(On("write MF 0 0.333333343").exit, 0);
  EXPECT_EQ(On("write MF 0 1e1").exit, 0);
  EXPECT_THAT(fixture.Run("journal list").out, AllOf(HasSubstr("\tTIMER PRESET 0: 00:00:10.00 -> 01:00:00.00\n"),
                                                     HasSubstr("\tMF 0: 0.33333334 -> 10\n")));
  fixture.options.password = "abc";
  fixture.ReplaceController("K220-22-R1");
  EXPECT_EQ(On("--password wrong write MI 0 1").exit, 4);
  EXPECT_THAT(fixture.Run("journal list").out, HasSubstr("refused: the password is wrong"));
  fixture.options.password.clear();
  fixture.options.faults = {"lost:on=WO,nth=2,away=100000"};
  fixture.ReplaceController("K220-22-R1");
  std::string values;
  for (int i = 0; i < 70; ++i) values += " 7";
  EXPECT_NE(On("write MI 0" + values).exit, 0);
  EXPECT_THAT(fixture.Run("journal list").out,
              HasSubstr("; 1 of 2 requests done, the last of these: unit 1: write MI 0"));
}

TEST_F(JournalVerb, AcknowledgesWhatTheCheckFinds) {
  EXPECT_EQ(On("write MI 0 5").exit, 0);
  std::filesystem::remove(File());
  EXPECT_EQ(fixture.Run("journal acknowledge").exit, 2);
  const Result done = fixture.Run("--user anna --reason 'made anew' journal acknowledge");
  EXPECT_EQ(done.exit, 0);
  EXPECT_THAT(done.out, HasSubstr("Acknowledged in record 3 by anna: made anew\n"));
  EXPECT_EQ(fixture.Run("--reason again journal acknowledge").exit, 1);
}

TEST_F(JournalVerb, ChecksAndSaysSoByItsExitCode) {
  EXPECT_EQ(fixture.Run("journal check").exit, 1) << "nothing can be proven of no journal";
  const std::string err = On("write MI 0 5").err;
  const std::string hash = err.substr(err.find("Head: 3 ") + 8, 64);
  EXPECT_EQ(On("write MI 0 6").exit, 0);
  EXPECT_EQ(fixture.Run("journal check").exit, 0);
  EXPECT_EQ(fixture.Run("journal check --expect " + hash + ",3").exit, 0);
  EXPECT_EQ(fixture.Run("journal check --expect " + hash + ",4").exit, 5);
  EXPECT_EQ(fixture.Run("journal check --expect " + hash).exit, 2);
  EXPECT_EQ(fixture.Run("journal list --expect " + hash + ",3").exit, 2);
  EXPECT_EQ(fixture.Run("journal check --day 2026-11-22").exit, 2);
  EXPECT_EQ(fixture.Run("journal list --day yesterday").exit, 2);
  EXPECT_EQ(fixture.Run("--session None journal check").exit, 2);

  std::filesystem::resize_file(File(), std::filesystem::file_size(File()) - 10);
  const Result cut = fixture.Run("--json journal check");
  EXPECT_EQ(cut.exit, 5);
  EXPECT_THAT(cut.out, AllOf(HasSubstr("\"sound\": false"), HasSubstr("\"fault\": \"cut\"")));
  std::filesystem::remove_all(fixture.home.Path() / "state");
  const Result unknown = fixture.Run("journal check");
  EXPECT_EQ(unknown.exit, 1);
  EXPECT_THAT(unknown.out, HasSubstr("Whether an end was cut off cannot be told"));
}

TEST_F(JournalVerb, SendsNothingThatCannotBeRecorded) {
  EXPECT_EQ(On("write MI 0 5").exit, 0);
  std::filesystem::remove(LockFile(fixture.home.Path() / "Sessions/Default"));
  std::filesystem::create_directory(LockFile(fixture.home.Path() / "Sessions/Default"));  // in the way
  const Result refused = fixture.ExpectFailure(
      {"--link sim:K220-22-R1 write MI 0 6", 1, "notRecorded", "--unrecorded changes it without a record"});
  EXPECT_THAT(refused.trace, Not(HasSubstr("write MI 0")));
  EXPECT_THAT(On("--yes write MI 0 6").err, HasSubstr("(nobody to ask; --unrecorded consents)"));
  EXPECT_EQ(On("read MI 0").out, "0\t5\n");
  EXPECT_EQ(On("--unrecorded write MI 0 6").exit, 0);
  EXPECT_EQ(On("read MI 0").out, "0\t6\n");
}

// The power fails, or the line: every request that went out has its record.
TEST_F(JournalVerb, HasTheRecordBeforeTheRequest) {
  EXPECT_EQ(On("write MI 0 5").exit, 0);
  fixture.options.faults = {"lost:on=WO,away=100000"};
  fixture.ReplaceController("K220-22-R1");
  EXPECT_NE(On("write MI 0 6").exit, 0);
  EXPECT_THAT(fixture.Run("journal list").out, HasSubstr("write operands\tfailed: "));
}

}  // namespace
}  // namespace kv::test
