// What the program keeps, when it is killed while it saves: each file is the old one or the new one. And each has the
// same bytes on every system, so that a folder can be carried from one to the other.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>
#include <random>

#include "base/Crc32.h"
#include "base/FilePlatform.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "dataview/files/GridFile.h"
#include "dataview/files/RegionFile.h"
#include "desktop/console/ConsolePacer.h"
#include "sessions/SessionIni.h"
#include "tests/support/Environment.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::mdlDataTypesView {
namespace {

namespace fs = std::filesystem;

constexpr const char* kModel = "K670-67-T40 / K390-29-T40";
constexpr const char* kFiles[] = {"plant.axt", "Sessions/Default/KvTeleExe.ini", "Sessions/Default/vsfRegions_1.vsf",
                                  "Sessions/Default/vsfOperands_1.vsf"};

// One of two states; the second has longer files.
void SaveEverything(const fs::path& home, bool isSecond) {
  const ProgramPaths paths(home);
  GridState state{OperandStore(kModel), {}, {}};
  std::vector<RegionRow> rows;
  for (std::int32_t i = 0; i < (isSecond ? 400 : 4); ++i) {
    rows.push_back(NewRegionRow({i * 4, i * 4 + 2, OperandTypeCode::MI}));
    rows.back().description = "Gr\xC3\xBC\xC3\x9F\x65 " + std::to_string(i);
    state.operands.Edit(OperandTypeCode::MI, i, std::to_string(i * (isSecond ? -1 : 1)));
  }
  EXPECT_TRUE(SaveRegionFile(home / "plant.axt", rows, kModel));
  state.regions.Assign(std::move(rows));
  EXPECT_TRUE(SaveSessionGrids(paths, state, kDefaultSession));
  const SharedState shared{paths};
  EXPECT_TRUE(WriteSessionIni(shared, "Note", isSecond ? std::string(200, 'x') : "K\xC3\xBCrz"));
}

std::string Content(const fs::path& home, const char* file) {
  return TemporaryFolder::Content(home / file);
}

TEST(SavedFiles, HaveTheSameBytesOnEverySystem) {
  const TemporaryFolder home;
  fs::create_directories(home.Path() / "Sessions" / "Default");
  for (const bool isSecond : {false, true}) {
    SaveEverything(home.Path(), isSecond);
    std::string sums;
    for (const char* file : kFiles) sums += ToHex(Crc32(Content(home.Path(), file)), 8) + " ";
    EXPECT_EQ(sums, isSecond ? "EBD1992F 1A9878E5 D0A13187 6CDC195D " : "8628E317 8FBEEDB6 6730B340 935F53A4 ");
  }
}

// The program that is killed: this one, started anew with a folder to save in.
constexpr const char* kHome = "KV_SAVE_IN";

TEST(SaveKill, DISABLED_SavesUntilItIsKilled) {
  const char* const home = std::getenv(kHome);
  ASSERT_NE(home, nullptr);
  std::cout << "\nsaving" << std::endl;
  for (bool isSecond = false; fs::exists(home); isSecond = !isSecond) SaveEverything(home, isSecond);
}

TEST(SaveKill, LeavesEachFileOldOrNew) {
  const TemporaryFolder home;
  fs::create_directories(home.Path() / "Sessions" / "Default");
  std::string states[2][std::size(kFiles)];
  ConsolePacer pacer;
  const Instant start = pacer.Now();
  for (const bool isSecond : {false, true}) {
    SaveEverything(home.Path(), isSecond);
    for (std::size_t i = 0; i < std::size(kFiles); ++i) states[isSecond][i] = Content(home.Path(), kFiles[i]);
  }
  const auto longest = static_cast<unsigned>((pacer.Now() - start).count());  // of both states, on this system
  kvtest::SetVariable(kHome, home.Path().string());
  std::minstd_rand random(kvtest::NumberFromEnvironment("KV_SEED", 1));
  int news[std::size(kFiles)] = {};
  for (unsigned kill = 0; kill < kvtest::NumberFromEnvironment("KV_KILLS", 12); ++kill) {
    kvtest::ProgramProcess program(Utf8FromPath(ExecutableFile()),
                                   {"--gtest_also_run_disabled_tests", "--gtest_filter=SaveKill.DISABLED_*"});
    std::string line = "-";
    while (!line.empty() && !line.contains("saving")) line = program.ReadLine();
    pacer.Sleep(std::chrono::microseconds(random() % (2 * longest)));
    program.End(SIGKILL);
    for (std::size_t i = 0; i < std::size(kFiles); ++i) {
      const std::string content = Content(home.Path(), kFiles[i]);
      news[i] += content == states[1][i] ? 1 : 0;
      ASSERT_TRUE(content == states[0][i] || content == states[1][i])
          << kFiles[i] << " after kill " << kill << ", " << content.size() << " bytes";
    }
  }
  for (const int count : news) std::cout << count << " ";
  std::cout << "files of the second state" << std::endl;
}

}  // namespace
}  // namespace kv::mdlDataTypesView
