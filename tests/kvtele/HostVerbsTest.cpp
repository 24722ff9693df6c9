#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Online, TellsWithWhatItIsOnLineAndKeepsTheModel) {
  CommandBench bench;
  const Result result = bench.On("K230", {"online"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, StartsWith("model          K230\nreported as    K230\nO/S            HW 1.0;"));

  // The session's last model decides how the next controller is asked.
  EXPECT_THAT(bench.On("Q50", {"online", "--json"}).out, HasSubstr("\"panelInformation\": null"));
  EXPECT_THAT(bench.On("Q50", {"--model", "Q50", "online", "--json"}).out, HasSubstr("\"panelInformation\": 3"));
  EXPECT_THAT(TemporaryFolder::Content(bench.home.Path() / "Sessions" / "Default" / "KvTeleExe.ini"),
              HasSubstr("LastModel=K230"));
}

TEST(Online, EndsWithACodeForEachRefusal) {
  CommandBench bench;
  bench.options.boot = true;
  const Result refused = bench.On("K220-22-R1", {"online"});
  EXPECT_EQ(refused.exit, 4);
  EXPECT_THAT(refused.err, HasSubstr("You cannot access this PLC because it is currently in BOOTSTRAP mode."));
  EXPECT_EQ(refused.out, "");
  EXPECT_EQ(bench.On("K330", {"--model", "K230", "online"}).exit, 4);
  bench.options.unit = 7;
  EXPECT_EQ(bench.On("K390", {"online"}).exit, 3);
}

Result RunSessions(CommandBench& bench, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "sessions");
  return bench.Run(arguments);
}

TEST(Sessions, AreListedCopiedAndDeleted) {
  CommandBench bench;
  const auto sessions = [&](const std::vector<std::string>& arguments) { return RunSessions(bench, arguments); };
  bench.home.Put("Sessions/Default/KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=Q50\r\n");
  EXPECT_EQ(sessions({"create", "Plant"}).exit, 0);
  EXPECT_EQ(sessions({"create", "Copy", "--session", "Plant"}).exit, 0);
  EXPECT_EQ(sessions({"list"}).out, "Copy\nDefault\nPlant\n");
  const auto copy = bench.home.Path() / "Sessions" / "Copy";
  EXPECT_EQ(TemporaryFolder::Content(copy / "KvTeleExe.ini"), "[KvTeleExe]\r\nLastModel=Q50\r\n");

  // A window that works in a session has its mark read-only.
  std::filesystem::permissions(copy / "tmp.txt", std::filesystem::perms::owner_read);
  EXPECT_EQ(sessions({"create", "Third", "--session", "Copy"}).exit, 0);
  const Result inUse = sessions({"delete", "Copy"});
  EXPECT_EQ(inUse.exit, 1);
  EXPECT_THAT(inUse.err, HasSubstr("in use"));
  EXPECT_EQ(sessions({"delete", "Third"}).exit, 0);
  EXPECT_EQ(sessions({"delete", "Plant"}).exit, 0);
  EXPECT_EQ(sessions({"list"}).out, "Copy\nDefault\n");
}

TEST(Sessions, SayWhatTheyCannotDo) {
  CommandBench bench;
  struct Row {
    std::vector<std::string> arguments;
    int exit;
    const char* text;
  };
  for (const Row& row : {Row{{"create", "Default"}, 1, "exists already"}, Row{{"create", "../up"}, 2, "cannot contain"},
                         Row{{"create"}, 2, "needs the session's name"},
                         Row{{"create", "x", "--session", "gone"}, 2, "There is no session \"gone\""},
                         Row{{"delete", "Default"}, 1, "'Default' Session cannot be deleted."},
                         Row{{"delete", "gone"}, 2, "There is no session \"gone\""}}) {
    const Result result = RunSessions(bench, row.arguments);
    EXPECT_EQ(result.exit, row.exit) << row.text;
    EXPECT_THAT(result.err, HasSubstr(row.text));
  }
}

}  // namespace
}  // namespace kv::test
