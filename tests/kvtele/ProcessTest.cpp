#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "simulator/ModelTable.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/WeatherSeeds.h"

namespace kvtest {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

// The program itself: its arguments, its two outputs, its exit code, its memory in the session's folder.
TEST(KvTeleProcess, WritesAndReadsAndStopsOnCtrlC) {
  const kv::TemporaryFolder home;  // without a session: its folder is made
  setenv("XDG_STATE_HOME", home.Path().c_str(), 1);
  const auto start = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--home", home.Path().string(), "--link", "sim:Q50"});
    return std::make_unique<ProgramProcess>(KVTELE_PROGRAM, std::move(arguments));
  };
  const auto write = start({"write", "MI", "7", "-5"});
  EXPECT_EQ(write->End(), 0);
  EXPECT_EQ(write->Output(), "");
  EXPECT_THAT(write->Complaint(),
              MatchesRegex("Written and read back: MI 7\nRecorded in the change journal. Head: 3 .*\n"));
  const auto read = start({"read", "MI", "7"});
  EXPECT_EQ(read->End(), 0) << read->Complaint();
  EXPECT_EQ(read->Output(), "7\t-5\n");

  const std::string state = "Sessions/Default/Simulated Q50.state";
  ASSERT_TRUE(std::filesystem::exists(home.Path() / state));

  const auto plant = home.Put("plant.axt", "Version 100\r\nQ50\r\n2\tMI\t100\t100\t\r\n\r\n");  // it moves by itself
  const auto watch = start({"watch", plant.string(), "--for", "30"});
  EXPECT_THAT(watch->ReadLine(), HasSubstr("\tMI\t100\t"));
  EXPECT_EQ(watch->End(SIGINT), 130);
  EXPECT_THAT(watch->Complaint(), HasSubstr("stopped by Ctrl-C"));

  home.Put(state, "no state at all");
  const auto damaged = start({"identify"});
  EXPECT_EQ(damaged->End(), 3);
  EXPECT_THAT(damaged->Complaint(), HasSubstr("Simulated Q50.state"));
}

// Every model and every file of the sample set, by who consents to everything: what belongs together would go on, and
// of all else nothing is on the line that changes the controller. A ninth of all else; all of it with the weather's
// seeds.
TEST(KvTeleProcess, NoPairOfModelAndSampleFileHarms) {
  const kv::TemporaryFolder home;
  const std::string trace = (home.Path() / "trace.txt").string();
  setenv("XDG_STATE_HOME", home.Path().c_str(), 1);
  ASSERT_EQ(ProgramProcess(KVSIM_PROGRAM, {"make", "set", home.Path().string()}).End(), 0);
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(home.Path())) {
    if (entry.is_regular_file() && entry.path().extension() != ".kft") files.push_back(entry.path());
  }
  ASSERT_EQ(files.size(), 21U);
  std::ranges::sort(files);
  const int every = kv::test::WeatherSeeds(1) > 1 ? 1 : 9;
  int pair = 0;
  for (const sim::Model& model : sim::AllModels()) {
    for (const std::filesystem::path& file : files) {
      const std::string name = file.filename().string();
      const bool isAurexFile = name.ends_with(".dai") || name.ends_with(".kos");
      const bool isProject = file.parent_path().filename() == "Samples";
      const bool fits = !model.HasColour() && model.UnderstandsBlocks() == isAurexFile &&
                        (isProject ? model.reported == (isAurexFile ? "K220-22-R1" : "Q50-2-R34")
                                   : name.contains(std::string(model.osModel) + "v"));
      if (!fits && ++pair % every != 0) continue;
      std::vector<std::string> arguments = {"--home",  home.Path().string(),
                                            "--link",  "sim:" + std::string(model.name),
                                            "--trace", trace,
                                            "--yes",   "--password",
                                            "1",       "download"};
      if (isProject) {
        arguments.insert(arguments.end(), {"project", file.string()});
      } else {
        arguments.insert(arguments.end(), {"os", "--lose-project", "--lose-values", "--file", file.string()});
      }
      if (name.ends_with(".kos")) {
        arguments.insert(arguments.end(), {"--fonts", (file.parent_path() / "AurexFontv1300.kft").string()});
      }
      if (fits) arguments.emplace_back("--dry-run");
      std::filesystem::remove(trace);
      ProgramProcess download(KVTELE_PROGRAM, arguments);
      const int exit = download.End();
      SCOPED_TRACE(std::string(model.name) + " " + name + "\n" + download.Complaint());
      EXPECT_EQ(exit == 0, fits);
      EXPECT_THAT(exit, testing::AnyOf(0, 1, 4));
      const std::string line = kv::TemporaryFolder::Content(trace);
      EXPECT_THAT(line, HasSubstr("identification"));
      EXPECT_THAT(
          line, testing::Not(testing::ContainsRegex("/01(CC|PV|DE|L[ND]|F[SW]|OS|CP|CB|W[DO])|project|program|data")));
    }
  }
}

}  // namespace
}  // namespace kvtest
