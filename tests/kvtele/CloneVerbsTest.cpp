#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kModel = "AurexQ50";  // a small one that can be cloned

// A clone file, and what is done with it on simulated controllers.
struct CloneVerbs : ::testing::Test {
  CommandFixture fixture;
  std::string file = fixture.PathOf("plc.kdf");

  Result Clone(const std::string& action, const std::string& more = "") {
    return fixture.On(kModel, "clone " + action + " @plc.kdf " + more);
  }
  Result Create(const std::string& more = "") { return Clone("create", "--password 1 --stop " + more); }
  // A command on `file` for another controller.
  Result On(CommandFixture& other, const std::string& line) {
    std::string all = line;
    if (const auto at = all.find("@plc.kdf"); at != std::string::npos) all.replace(at, 8, file);
    return other.On(kModel, all);
  }
  // Changes one letter of line `number`, a frame.
  void Damage(int number) {
    std::string content = TemporaryFolder::Content(file);
    std::size_t at = 0;
    for (int line = 1; line < number; ++line) at = content.find('\n', at) + 1;
    content[at + 20] = content[at + 20] == '0' ? '1' : '0';
    fixture.home.Put("plc.kdf", content);
  }
};

TEST_F(CloneVerbs, ARestoreThatDidNotHoldIsFoundByVerify) {
  ASSERT_EQ(Create().exit, 0);
  CommandFixture liar;
  liar.options.faults = {"lie:on=WD,nth=2"};
  liar.options.seed = 2;
  const Result told = On(liar, "clone restore @plc.kdf --yes --verify");
  EXPECT_EQ(told.exit, 5);
  EXPECT_THAT(told.out, HasSubstr("bytes differ\n    00100"));
  const Result json = On(liar, "clone verify @plc.kdf --json");
  EXPECT_EQ(json.exit, 5);
  EXPECT_THAT(json.out, HasSubstr("\"same\": false"));
}

TEST_F(CloneVerbs, ARestoreThatWouldHarmIsRefusedUnlessForced) {
  ASSERT_EQ(Create("--segments HW").exit, 0);
  fixture.ExpectFailure({"--link sim:AurexQ50 clone restore @plc.kdf", 1, "notConfirmed", "or give --yes"});
  const Result other = fixture.ExpectFailure(
      {"--link sim:K450 clone restore @plc.kdf --yes", 4, "notFit", "but the controller is a K450"});
  EXPECT_THAT(other.trace, Not(HasSubstr("/01WD")));

  Damage(6);
  const Result info = Clone("info");
  EXPECT_EQ(info.exit, 6);
  EXPECT_THAT(info.out, AllOf(HasSubstr("damage         line 6: expected"), Not(HasSubstr(" more\n"))));
  const Result damaged = fixture.ExpectFailure(
      {"--link sim:AurexQ50 clone restore @plc.kdf --yes", 6, "badFile", "it is damaged: line 6"});
  EXPECT_EQ(damaged.trace, "") << "not even connected";
  EXPECT_EQ(Clone("verify").exit, 6);
  // The controller does not answer a frame with a bad checksum.
  const Result forced = fixture.ExpectFailure({"--link sim:AurexQ50 clone restore @plc.kdf --yes --force", 7,
                                               "badReply", "Line 6 of the clone file: no reply within 10 s"});
  EXPECT_THAT(forced.err, HasSubstr("Warning: The clone file is damaged: line 6"));
}

TEST_F(CloneVerbs, LeaveTheFileAsItWasWhenTheyFail) {
  ASSERT_EQ(Create("--segments HW").exit, 0);
  const std::string before = TemporaryFolder::Content(file);
  const FailingCommand rows[] = {
      {"create @no/such.kdf --password 1 --stop", 6, "badFile", "such.kdf"},
      {"create @plc.kdf --password 1 --yes --replace", 1, "notConfirmed", "--no-stop"},
      {"create @plc.kdf --password 2 --replace --stop", 4, "password", "password"},
      {"verify @plc.kdf --segments XY", 2, "usage", "no segment \"XY\""},
      {"verify @plc.kdf", 7, "noReply", "no reply", "noreply:on=block"},
      {"restore @plc.kdf --backup @plc.kdf --yes --replace --stop", 2, "usage", "would overwrite the clone file"},
      {"restore @plc.kdf --yes", 4, "passwordNeeded", "give the controller's password with --password"},
      {"restore @plc.kdf --yes --password 1", 7, "badReply", "Line 6 of the clone file",
       "lost:on=WD,nth=2,away=600000"},
      {"restore @plc.kdf --yes --password 1", 4, "badReply", "refused: its flash", "refuse:on=WD,nth=2,code=0D"},
      {"restore @plc.kdf --yes --password 1", 1, "unproven", "Line 6 of the clone file got an OK",
       "wrongunit:on=WD,nth=2"},
      {"restore @plc.kdf --yes --password 1 --backup @no/b.kdf --stop", 6, "badFile", "because the backup failed"},
  };
  for (FailingCommand row : rows) {
    CommandFixture troubled;
    troubled.options.password = "1";
    troubled.home.Put("plc.kdf", before);
    const std::string line = std::string("--link sim:AurexQ50 clone ") + row.line;
    row.line = line.c_str();
    troubled.ExpectFailure(row);
    EXPECT_EQ(TemporaryFolder::Content(troubled.PathOf("plc.kdf")), before);
  }
}

TEST_F(CloneVerbs, ASparePartWithAnotherUnitAndDataInAnErasedSegmentCanBeRestored) {
  ASSERT_EQ(Create().exit, 0);
  std::string content = TemporaryFolder::Content(file);
  for (std::size_t at = 0; (at = content.find("/01WDF0030")) != std::string::npos;) {
    content.erase(at, content.find('\n', at) + 1 - at);  // as if AP had been erased
  }
  fixture.home.Put("plc.kdf", content);
  fixture.ExpectFailure({"--link sim:AurexQ50 clone restore @plc.kdf --yes", 4, "notFit", "not as recorded: AP."});
  std::filesystem::remove(file + ".manifest");

  CommandFixture spare;
  spare.options.unit = 7;
  spare.options.memorySeed = 2;
  const std::string restore = "--unit 7 clone restore @plc.kdf --yes --verify ";
  for (const char* forced : {"", "--force"}) {  // unit 1 may be a machine on the same line
    const Result refused = On(spare, restore + forced);
    EXPECT_EQ(refused.exit, 4);
    EXPECT_THAT(refused.err, HasSubstr("--unit-from-controller"));
    EXPECT_THAT(refused.trace, Not(HasSubstr("WD")));
  }
  const Result differs = On(spare, restore + "--unit-from-controller --backup @b.kdf --password 1 --stop");
  EXPECT_EQ(differs.exit, 5) << differs.err;
  EXPECT_THAT(differs.err, HasSubstr("What the controller holds in AP stays"));
  EXPECT_THAT(differs.err, HasSubstr("--erase-empty erases it"));
  EXPECT_EQ(On(spare, restore + "--unit-from-controller --erase-empty").exit, 0);
  EXPECT_EQ(TemporaryFolder::Content(file), content);

  EXPECT_EQ(spare.On(kModel, "--unit 7 clone restore @b.kdf --yes --verify").exit, 0);
}

}  // namespace
}  // namespace kv::test
