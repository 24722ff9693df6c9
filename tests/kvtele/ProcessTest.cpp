#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/PathText.h"
#include "tests/support/Environment.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kvtest {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

// The program itself: its arguments, its two outputs, its exit code, its memory in the session's folder.
TEST(KvTeleProcess, WritesAndReadsAndStopsOnCtrlC) {
  const kv::TemporaryFolder folder;
  const auto home = folder.Path() / kv::PathFromUtf8("M\u00FChle \u03A9 2");  // without a session: its folder is made
  std::filesystem::create_directory(home);
  SetVariable(kUserState, kv::Utf8FromPath(home));
  const auto start = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--home", kv::Utf8FromPath(home), "--link", "sim:Q50"});
    return std::make_unique<ProgramProcess>(KVTELE_PROGRAM, std::move(arguments), Console::Own);
  };
  const auto write = start({"write", "MI", "7", "-5"});
  EXPECT_EQ(write->End(), 0);
  EXPECT_EQ(write->Output(), "");
  EXPECT_THAT(write->Complaint(),
              MatchesRegex("Written and read back: MI 7\nRecorded in the change journal. Head: 3 .*\n"));
  const std::string trace = kv::Utf8FromPath(home / "trace.txt");
  const auto read = start({"--trace", trace, "read", "MI", "7"});
  EXPECT_EQ(read->End(), 0) << read->Complaint();
  EXPECT_EQ(read->Output(), "7\t-5\n");
  EXPECT_THAT(kv::TemporaryFolder::Content(home / "trace.txt"), testing::ContainsRegex("^20..-..-..T..:..:"));

  const std::string state = "Sessions/Default/Simulated Q50.state";
  ASSERT_TRUE(std::filesystem::exists(home / state));

  const auto plant = folder.Put("plant.axt", "Version 100\r\nQ50\r\n2\tMI\t100\t100\t\r\n\r\n");  // it moves by itself
  const auto watch = start({"watch", plant.string(), "--for", "30"});
  EXPECT_THAT(watch->ReadLine(), HasSubstr("\tMI\t100\t"));
  EXPECT_EQ(watch->End(SIGINT), 130);
  EXPECT_THAT(watch->Complaint(), HasSubstr("stopped by Ctrl-C"));

  std::ofstream(home / state) << "no state at all";
  const auto damaged = start({"identify"});
  EXPECT_EQ(damaged->End(), 3);
  EXPECT_THAT(damaged->Complaint(), HasSubstr("Simulated Q50.state"));
}

}  // namespace
}  // namespace kvtest
