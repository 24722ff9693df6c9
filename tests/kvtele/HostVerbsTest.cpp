#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvTele2/PagesFile.h"
#include "base/PathText.h"
#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(Online, TellsWithWhatItIsOnLineAndLeavesTheSessionAlone) {
  CommandBench bench;
  const std::string settings =
      "[KvTeleExe]\r\nLastModel=K230\r\nRecentCache0=" + Utf8FromPath(bench.home.Put("plant.ktc", "fonts")) +
      "*Plant\r\n";
  const auto ini = bench.home.Put("Sessions/Default/KvTeleExe.ini", settings);
  const Result result = bench.On("K670-T40", {"online"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "No project was compared: name a Telepanel file with --project.\n");
  EXPECT_THAT(
      result.out,
      HasSubstr(
          "\nreported as    K670-67-T40 / K390-29-T40\nhardware code  67\nO/S            1.10\nbuild          19\n"));
  EXPECT_THAT(result.out, HasSubstr("plant.ktc"));

  // The model decides how the controller is asked.
  const Result misfit = bench.On("Q50", {"online", "--json"});
  EXPECT_THAT(misfit.out, HasSubstr("\"panelInformation\": null"));
  EXPECT_THAT(misfit.err, StartsWith("The controller is a Q50-2-R34, but it was served as the session's model, K230"));
  EXPECT_THAT(bench.On("Q50", {"--model", "Q50", "online", "--json"}).out, HasSubstr("\"panelInformation\": 3"));

  EXPECT_THAT(bench.Run({"online"}).out, HasSubstr("Simulated K230")) << "a session without a link has its model's";

  EXPECT_EQ(TemporaryFolder::Content(ini), settings);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ini.parent_path()), {}), 1) << "nothing was added";
}

TEST(Online, ComparesTheProjectOfATelepanelFile) {
  CommandBench bench;
  const auto file = [&](const std::string& project) {
    return Utf8FromPath(bench.home.Put("a.kta", PrintPagesFile({project, "K330"})));
  };
  const Result other = bench.On("K330", {"online", "--project", file("Mill")});
  EXPECT_EQ(other.exit, 4);
  EXPECT_THAT(other.err, HasSubstr("does not match the project currently installed in the controller."));
  EXPECT_THAT(other.err, HasSubstr("for the project Mill, but the controller holds none"));
  bench.home.Put("bad.kta", "TELEPANEL-PAGES 1\r\n");
  const Result bad = bench.On("K330", {"online", "--project", Utf8FromPath(bench.home.Path() / "bad.kta")});
  EXPECT_EQ(bad.exit, 6);
  EXPECT_EQ(bad.trace, "") << "nothing is sent";
}

TEST(Online, EndsWithACodeForEachRefusal) {
  CommandBench bench;
  bench.options.boot = true;
  const Result refused = bench.On("K220-22-R1", {"online"});
  EXPECT_EQ(refused.exit, 4);
  EXPECT_THAT(refused.err, HasSubstr("You cannot access this PLC because it is currently in BOOTSTRAP mode."));
  EXPECT_THAT(refused.err, testing::ContainsRegex("The controller: model BOOT, hardware code .*serial number [0-9]+, "
                                                  "state boot loader"));
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
  bench.home.Put("Sessions/Plant/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=10.0.0.7\r\nTcpPort=20301\r\n");
  EXPECT_EQ(sessions({"list"}).out,
            "Copy\tQ50\tSimulated Q50\nDefault\tQ50\tSimulated Q50\nPlant\tQ50\t10.0.0.7:20301, unit 1\n");
  EXPECT_THAT(sessions({"--json", "list"}).out, HasSubstr(R"("link": "10.0.0.7:20301, unit 1")"));
  const auto copy = bench.home.Path() / "Sessions" / "Copy";
  EXPECT_EQ(TemporaryFolder::Content(copy / "KvTeleExe.ini"), "[KvTeleExe]\r\nLastModel=Q50\r\n");

  // A window that works in a session has its mark read-only.
  std::filesystem::permissions(copy / "tmp.txt", std::filesystem::perms::owner_read);
  const Result inUse = sessions({"delete", "Copy"});
  EXPECT_EQ(inUse.exit, 1);
  EXPECT_THAT(inUse.err, HasSubstr("in use"));
  const Result unasked = sessions({"delete", "Plant"});
  EXPECT_EQ(unasked.exit, 1) << "nobody to ask";
  EXPECT_THAT(unasked.err, HasSubstr("Delete the session 'Plant' (Q50, 10.0.0.7:20301, unit 1)?"));
  EXPECT_THAT(sessions({"list"}).out, HasSubstr("Plant"));
  EXPECT_EQ(sessions({"delete", "Plant", "--yes"}).exit, 0);
  EXPECT_THAT(sessions({"list"}).out, testing::Not(HasSubstr("Plant")));
}

TEST(Sessions, SayWhatTheyCannotDo) {
  CommandBench bench;
  using Arguments = std::vector<std::string>;
  const std::pair<Arguments, int> rows[] = {
      {{"create", "Default"}, 1}, {{"create", "../up"}, 2}, {{"create"}, 2}, {{"create", "x", "--session", "gone"}, 2},
      {{"delete", "Default"}, 1}, {{"delete", "gone"}, 2}};
  for (const auto& [arguments, exit] : rows) {
    const Result result = RunSessions(bench, arguments);
    EXPECT_EQ(result.exit, exit) << result.err;
    EXPECT_NE(result.err, "");
  }
  std::filesystem::remove_all(bench.home.Path() / "Sessions");
  EXPECT_EQ(RunSessions(bench, {"list"}).exit, 1);
}

}  // namespace
}  // namespace kv::test
