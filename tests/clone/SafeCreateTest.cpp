#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "clone/SafeCreate.h"
#include "tests/clone/CloneBench.h"

namespace kv::test {
namespace {

using testing::HasSubstr;

constexpr const char* kGood = "the good clone of last week";

struct SafeBench : CloneBench {
  SafeBench() {
    channel.SetSegments({"HWF00001000 00000410", "OSF00002000 00000200"});
    channel.state = 'S';  // nobody is asked whether it may be stopped
  }
  // What somebody does while the controller's memory is read.
  std::function<void()> meanwhile = [] {};

  SafeCreate CreateSafely(bool isPasswordAsked = true) {
    SafeCreate safe(file);
    if (isPasswordAsked) prompts.Enter("x");
    prompts.Press(PromptAnswer::Ok);
    pacer.OnDoEvents([this] { std::exchange(meanwhile, [] {})(); });
    clsDumpPLC engine(window, prompts, pacer, pacer);
    running = &engine;
    safe.Create(engine, prompts, channel);
    return safe;
  }
  [[nodiscard]] std::vector<std::filesystem::path> Files() const {
    std::vector<std::filesystem::path> files;
    for (const auto& each : std::filesystem::directory_iterator(folder.Path())) {
      if (each.path().extension() != ".manifest") files.push_back(each.path());
    }
    return files;
  }
};

TEST(SafeCreate, LeavesAGoodCloneWhateverFails) {
  const auto damage = [](SafeBench& bench) {
    for (const auto& each : bench.Files()) {
      if (each != bench.file) std::fstream(each, std::ios::in | std::ios::out | std::ios::binary) << "?";
    }
  };
  struct Row {
    const char* what;
    std::function<void(SafeBench& bench)> spoil;
    const char* reason;
    bool isPasswordAsked = true;
  };
  std::vector<Row> rows = {
      {"password", [](SafeBench& bench) { bench.channel.reply = CommandReply{"GI0??"}; }, "did not accept"},
      {"stop", [](SafeBench& bench) { bench.meanwhile = [&] { bench.running->StopDump(); }; }, "Stopped by the user"},
      {"nothing", [](SafeBench& bench) { bench.channel.SetSegments({"XXF00001000 00000410"}); }, "would be empty"},
      {"disk", [&](SafeBench& bench) { bench.meanwhile = [&] { damage(bench); }; }, "is damaged: line 1"},
      {"protected",
       [](SafeBench& bench) { std::filesystem::permissions(bench.file, std::filesystem::perms::owner_read); },
       "write-protected", false},
      {"state", [](SafeBench& bench) { bench.channel.status = kBlockRefused; }, "did not tell whether its program"},
      {"old O/S", [](SafeBench& bench) { bench.channel.version->osVersion = "4.5"; }, "clones need 4.60", false},
  };
  for (int exchange = 1; exchange <= 9; ++exchange) {
    rows.push_back({"exchange", [exchange](SafeBench& bench) { bench.channel.failAt = exchange; }, "", exchange > 1});
  }
  for (const Row& row : rows) {
    for (const bool stoodThere : {true, false}) {
      SafeBench bench;
      if (stoodThere) bench.folder.Put("clone.kdf", kGood);
      if (!stoodThere && row.what == std::string("protected")) continue;
      row.spoil(bench);
      const SafeCreate safe = bench.CreateSafely(row.isPasswordAsked);
      EXPECT_NE(safe.Outcome().end, CloneEnd::Done) << row.what;
      EXPECT_THAT(safe.Outcome().reason, HasSubstr(row.reason));
      EXPECT_FALSE(safe.File()) << row.what;
      EXPECT_EQ(safe.Outcome().link.code == LinkErrorCode::NoReply, bench.channel.failAt > 0) << row.what;
      // Only a controller that is too old leaves anything of its own, and only where nothing was.
      const bool leavesEmpty = !stoodThere && row.what == std::string("old O/S");
      EXPECT_EQ(bench.Files().size(), stoodThere || leavesEmpty ? 1U : 0U) << row.what;
      if (stoodThere) {
        EXPECT_EQ(bench.Content(), kGood) << row.what;
      }
    }
  }
}

TEST(SafeCreate, LeavesAFileThatSomebodyElsePutThereAndTellsWhereTheCloneIs) {
  for (const bool stoodThere : {true, false}) {
    SafeBench bench;
    if (stoodThere) bench.folder.Put("clone.kdf", kGood);
    bench.meanwhile = [&] { bench.folder.Put("clone.kdf", "a colleague's"); };
    const SafeCreate safe = bench.CreateSafely();
    EXPECT_EQ(safe.Outcome().cause, CloneCause::File);
    EXPECT_EQ(bench.Content(), "a colleague's");
    ASSERT_TRUE(safe.File());
    EXPECT_TRUE(InspectClone(*safe.File())->IsSound());
    EXPECT_THAT(safe.Outcome().reason, HasSubstr("It is in " + Utf8FromPath(*safe.File())));
    EXPECT_EQ(bench.channel.calls.back(), kFailed);
  }
}

TEST(SafeCreate, TellsWhatBecameOfTheControllerWhileItWasRead) {
  struct Row {
    std::function<void(SafeBench& bench)> meanwhile;
    char stateAfter;
    const char* told;  // of a success, what it warns of
    bool isMade;
  };
  const Row rows[] = {
      {[](SafeBench&) {}, 'R', "", true},
      {[](SafeBench&) {}, 'I', "", true},
      {[](SafeBench&) {}, 'S', "its state is S", true},
      {[](SafeBench& bench) { bench.channel.state = 'R'; }, 'R', "Somebody else started the program", true},
      {[](SafeBench& bench) { bench.channel.info->serialNumber = 12; }, 'R', "serial number 12 instead of 11", false},
  };
  for (const Row& row : rows) {
    SafeBench bench;
    bench.channel.state = 'R';
    bench.channel.info = Channel::ControllerInfo{.serialNumber = 11, .state = row.stateAfter, .projectName = {}};
    bench.meanwhile = [&] { row.meanwhile(bench); };
    bench.prompts.Enter("x");
    bench.prompts.Press(PromptAnswer::Yes);
    const SafeCreate safe = bench.CreateSafely(false);
    ASSERT_EQ(safe.Outcome().end == CloneEnd::Done, row.isMade) << row.told << safe.Outcome().reason;
    EXPECT_EQ(bench.Exists(), row.isMade);
    const std::string told = !row.isMade ? safe.Outcome().reason : safe.Warnings().empty() ? "" : safe.Warnings()[0];
    EXPECT_THAT(told, HasSubstr(row.told));
    EXPECT_EQ(told.empty(), *row.told == '\0') << told;
    if (row.isMade) {
      EXPECT_EQ((*ReadManifest(bench.file))->wasRunning, told.contains("Somebody"));
    }
  }
}

#ifndef _WIN32
TEST(SafeCreate, ReplacesWhatALinkPointsAt) {
  SafeBench bench;
  bench.folder.Put("behind.kdf", kGood);
  bench.meanwhile = [&] { EXPECT_EQ(bench.Content(), kGood); };
  std::filesystem::create_symlink("behind.kdf", bench.file);
  EXPECT_EQ(bench.CreateSafely().Outcome().end, CloneEnd::Done);
  EXPECT_TRUE(std::filesystem::is_symlink(bench.file));
  EXPECT_TRUE(InspectClone(bench.folder.Path() / "behind.kdf")->IsSound());
  EXPECT_EQ(bench.Files().size(), 2U);
}
#endif

}  // namespace
}  // namespace kv::test
