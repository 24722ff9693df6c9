#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/PathText.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Paths, AreToldAndRefusedWhereNothingCanBeWritten) {
  CommandFixture fixture;
  EXPECT_THAT(fixture.Run("paths").out, HasSubstr("home             " + Utf8FromPath(fixture.home.Path()) + "\n"));
  EXPECT_THAT(fixture.Run("--home @x --json paths").out, HasSubstr("\"because\": \"named by --home\""));
  fixture.places = ProgramPlaces{fixture.home.Path() / "nowhere", {}};
  for (const char* line : {"paths", "sessions list", "--link sim:Q50 identify"}) {
    fixture.ExpectFailure({line, 1, "failed", "there is no folder for the sessions"});
  }
  EXPECT_EQ(fixture.Run("ports").exit, 0);
}

TEST(Help, BeginsWithExamplesAndGoesToStandardOutput) {
  CommandFixture fixture;
  for (const char* verb : {"identify", "online", "read", "write", "regions", "watch", "clone", "download", "run",
                           "stop", "sessions", "ports"}) {
    const Result result = fixture.Run(verb + std::string(" --help"));
    const std::string examples = result.out.substr(0, result.out.find("\n\n"));
    EXPECT_THAT(examples, Not(HasSubstr("--password "))) << "others see it in the list of processes";
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, StartsWith("Examples:\n  kvtele "));
    EXPECT_THAT(result.out, HasSubstr(std::string("Usage: kvtele ") + verb));
  }
  EXPECT_THAT(fixture.Run("--help").out, StartsWith("Examples:\n  kvtele "));
  EXPECT_THAT(fixture.Run("--version").out, ::testing::MatchesRegex("kvtele \\w+\\.\\w+\\.\\w+\n"));
}

TEST(Online, TellsWithWhatItIsOnLineAndLeavesTheSessionAlone) {
  CommandFixture fixture;
  fixture.home.Put("plant.ktc", "fonts");
  const std::string settings =
      "[KvTeleExe]\r\nLastModel=K230\r\nRecentCache0=" + fixture.PathOf("plant.ktc") + "*Plant\r\n";
  const auto ini = fixture.home.Put("Sessions/Default/KvTeleExe.ini", settings);
  const Result result = fixture.On("K670-T40", "online");
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "No project was compared: name a Telepanel file with --project.\n");
  EXPECT_THAT(result.out,
              HasSubstr("\nreported as    K670-67-T40 / K390-29-T40\nhardware code  67\nO/S            1.10\n"
                        "build          19\n"));
  EXPECT_THAT(result.out, HasSubstr("plant.ktc"));

  // The model decides how the controller is asked.
  const Result misfit = fixture.On("Q50", "online --json");
  EXPECT_THAT(misfit.out, HasSubstr("\"panelInformation\": null"));
  EXPECT_THAT(misfit.err, StartsWith("The controller is a Q50-2-R34, but it was served as the session's model, K230"));
  EXPECT_THAT(fixture.On("Q50", "--model Q50 online --json").out, HasSubstr("\"panelInformation\": 3"));
  EXPECT_THAT(fixture.Run("online").out, HasSubstr("Simulated K230")) << "a session without a link has its model's";

  EXPECT_EQ(TemporaryFolder::Content(ini), settings);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ini.parent_path()), {}), 1) << "nothing was added";
}

TEST(Screen, FollowsWhatChangesAndOperatesNothing) {
  CommandFixture fixture;
  ASSERT_EQ(fixture.On("K670", "--yes press Start").exit, 0);
  const Result watched = fixture.On("K670", "screen --watch --text --count 3");
  EXPECT_EQ(watched.exit, 0) << watched.err;
  EXPECT_THAT(watched.out, HasSubstr("RUNNING"));
  EXPECT_THAT(watched.trace, Not(HasSubstr("panel: ")));
  EXPECT_THAT(watched.trace, Not(HasSubstr("panel event")));
}

}  // namespace
}  // namespace kv::test
