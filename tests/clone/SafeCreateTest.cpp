#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "clone/SafeCreate.h"
#include "tests/clone/CloneFixture.h"

namespace kv::test {
namespace {

using testing::HasSubstr;

constexpr const char* kGood = "the good clone of last week";

struct SafeFixture : CloneFixture {
  SafeFixture() {
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
  const auto damage = [](SafeFixture& fixture) {
    for (const auto& each : fixture.Files()) {
      if (each != fixture.file) std::fstream(each, std::ios::in | std::ios::out | std::ios::binary) << "?";
    }
  };
  struct Row {
    const char* what;
    std::function<void(SafeFixture& fixture)> spoil;
    const char* reason;
    bool isPasswordAsked = true;
  };
  std::vector<Row> rows = {
      {"password", [](SafeFixture& fixture) { fixture.channel.reply = CommandReply{"GI0??"}; }, "did not accept"},
      {"stop", [](SafeFixture& fixture) { fixture.meanwhile = [&] { fixture.running->StopDump(); }; },
       "Stopped by the user"},
      {"nothing", [](SafeFixture& fixture) { fixture.channel.SetSegments({"XXF00001000 00000410"}); },
       "would be empty"},
      {"disk", [&](SafeFixture& fixture) { fixture.meanwhile = [&] { damage(fixture); }; }, "is damaged: line 1"},
      {"protected",
       [](SafeFixture& fixture) { std::filesystem::permissions(fixture.file, std::filesystem::perms::owner_read); },
       "write-protected", false},
      {"state", [](SafeFixture& fixture) { fixture.channel.status = kBlockRefused; },
       "did not tell whether its program"},
      {"old O/S", [](SafeFixture& fixture) { fixture.channel.version->osVersion = "4.5"; }, "clones need 4.60", false},
  };
  for (int exchange = 1; exchange <= 9; ++exchange) {
    rows.push_back(
        {"exchange", [exchange](SafeFixture& fixture) { fixture.channel.failAt = exchange; }, "", exchange > 1});
  }
  for (const Row& row : rows) {
    for (const bool stoodThere : {true, false}) {
      SafeFixture fixture;
      if (stoodThere) fixture.folder.Put("clone.kdf", kGood);
      if (!stoodThere && row.what == std::string("protected")) continue;
      row.spoil(fixture);
      const SafeCreate safe = fixture.CreateSafely(row.isPasswordAsked);
      EXPECT_NE(safe.Outcome().end, CloneEnd::Done) << row.what;
      EXPECT_THAT(safe.Outcome().reason, HasSubstr(row.reason));
      EXPECT_FALSE(safe.File()) << row.what;
      EXPECT_EQ(safe.Outcome().link.code == LinkErrorCode::NoReply, fixture.channel.failAt > 0) << row.what;
      // Only a controller that is too old leaves anything of its own, and only where nothing was.
      const bool leavesEmpty = !stoodThere && row.what == std::string("old O/S");
      EXPECT_EQ(fixture.Files().size(), stoodThere || leavesEmpty ? 1U : 0U) << row.what;
      if (stoodThere) {
        EXPECT_EQ(fixture.Content(), kGood) << row.what;
      }
    }
  }
}

TEST(SafeCreate, LeavesAFileThatSomebodyElsePutThereAndTellsWhereTheCloneIs) {
  for (const bool stoodThere : {true, false}) {
    SafeFixture fixture;
    if (stoodThere) fixture.folder.Put("clone.kdf", kGood);
    fixture.meanwhile = [&] { fixture.folder.Put("clone.kdf", "a colleague's"); };
    const SafeCreate safe = fixture.CreateSafely();
    EXPECT_EQ(safe.Outcome().cause, CloneCause::File);
    EXPECT_EQ(fixture.Content(), "a colleague's");
    ASSERT_TRUE(safe.File());
    EXPECT_TRUE(InspectClone(*safe.File())->IsSound());
    EXPECT_THAT(safe.Outcome().reason, HasSubstr("It is in " + Utf8FromPath(*safe.File())));
    EXPECT_EQ(fixture.channel.calls.back(), kFailed);
  }
}

TEST(SafeCreate, TellsWhatBecameOfTheControllerWhileItWasRead) {
  struct Row {
    std::function<void(SafeFixture& fixture)> meanwhile;
    char stateAfter;
    const char* told;  // of a success, what it warns of
    bool isMade;
  };
  const Row rows[] = {
      {[](SafeFixture&) {}, 'R', "", true},
      {[](SafeFixture&) {}, 'I', "", true},
      {[](SafeFixture&) {}, 'S', "its state is stopped", true},
      {[](SafeFixture& fixture) { fixture.channel.state = 'R'; }, 'R', "Somebody else started the program", true},
      {[](SafeFixture& fixture) { fixture.channel.info->serialNumber = 12; }, 'R', "serial number 12 instead of 11",
       false},
  };
  for (const Row& row : rows) {
    SafeFixture fixture;
    fixture.channel.state = 'R';
    fixture.channel.info = Channel::ControllerInfo{.serialNumber = 11, .state = row.stateAfter, .projectName = {}};
    fixture.meanwhile = [&] { row.meanwhile(fixture); };
    fixture.prompts.Enter("x");
    fixture.prompts.Press(PromptAnswer::Yes);
    const SafeCreate safe = fixture.CreateSafely(false);
    ASSERT_EQ(safe.Outcome().end == CloneEnd::Done, row.isMade) << row.told << safe.Outcome().reason;
    EXPECT_EQ(fixture.Exists(), row.isMade);
    const std::string told = !row.isMade ? safe.Outcome().reason : safe.Warnings().empty() ? "" : safe.Warnings()[0];
    EXPECT_THAT(told, HasSubstr(row.told));
    EXPECT_EQ(told.empty(), *row.told == '\0') << told;
    if (row.isMade) {
      EXPECT_EQ((*ReadManifest(fixture.file))->wasRunning, told.contains("Somebody"));
    }
  }
}

#ifndef _WIN32
TEST(SafeCreate, ReplacesWhatALinkPointsAt) {
  SafeFixture fixture;
  fixture.folder.Put("behind.kdf", kGood);
  fixture.meanwhile = [&] { EXPECT_EQ(fixture.Content(), kGood); };
  std::filesystem::create_symlink("behind.kdf", fixture.file);
  EXPECT_EQ(fixture.CreateSafely().Outcome().end, CloneEnd::Done);
  EXPECT_TRUE(std::filesystem::is_symlink(fixture.file));
  EXPECT_TRUE(InspectClone(fixture.folder.Path() / "behind.kdf")->IsSound());
  EXPECT_EQ(fixture.Files().size(), 2U);
}
#endif

}  // namespace
}  // namespace kv::test
