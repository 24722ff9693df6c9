#include "journal/ChangeJournal.h"

#include "journal/JournalTime.h"
#include "tests/journal/JournalFixture.h"

namespace kv {
namespace {

struct ChangeJournalTest : testing::Test, test::JournalFixture {};

TEST_F(ChangeJournalTest, TellsTheTimeWithItsZone) {
  for (const auto& [minutes, zone] : {std::pair(0, "+00:00"), {60, "+01:00"}, {-1, "-00:01"}, {-570, "-09:30"}}) {
    pacer.SetUtcOffset(std::chrono::minutes(minutes));
    EXPECT_THAT(JournalTime(pacer), testing::EndsWith(zone));
  }
}

TEST_F(ChangeJournalTest, LetsEverybodyWriteWhoMayWriteInTheFolder) {
  namespace fs = std::filesystem;
  for (const fs::perms shared : {fs::perms::group_write, fs::perms::others_write}) {
    fs::remove(File());
    fs::permissions(places.folder, fs::perms::owner_all | fs::perms::others_read | shared);
    (void)Begin();
    EXPECT_EQ(fs::status(File()).permissions() & shared, shared) << "whatever the umask";
  }
}

TEST_F(ChangeJournalTest, LetsTwoWritersTakeTurns) {
  ChangeJournal other(places, disk, pacer, pacer);
  for (int i = 0; i < 5; ++i) {
    EXPECT_NE(Begin(), 0U);
    EXPECT_TRUE(other.Append({.kind = RecordKind::Begin, .user = "hans"}));
  }
  EXPECT_EQ(Findings(), "");
  EXPECT_EQ(Check().records, 11U);
}

TEST_F(ChangeJournalTest, RecordsThatTheJournalIsAnotherOne) {
  (void)Begin();
  const std::string older = Bytes();
  (void)Begin();
  test::JournalFixture other;
  while (other.Bytes().size() < 8 * older.size()) (void)other.Begin();
  struct Case {
    const char* name;
    std::string content;  // none: the file is taken away
  };
  for (const Case& each : {Case{"a longer one", other.Bytes()}, Case{"an older copy", older}, Case{"gone", ""}}) {
    for (const bool isRunning : {true, false}) {
      (void)Begin();
      if (each.content.empty()) {
        std::filesystem::remove(File());
      } else {
        Put(each.content);
      }
      if (!isRunning) Reopen();
      (void)Begin();
      EXPECT_THAT(Findings(), testing::StartsWith("foundThen")) << each.name;
      (void)Begin();
      EXPECT_THAT(Findings(), testing::StartsWith("foundThen")) << each.name << ": green again";
    }
  }
}

// Every call of the disk fails once, at every place: the change is refused, or its record is there; and what follows
// is recorded, in a journal that is in order.
TEST_F(ChangeJournalTest, StaysInOrderWhateverCallFails) {
  int failures = 0;
  for (int failAt = 1;; ++failAt) {
    std::filesystem::remove_all(places.folder);
    std::filesystem::remove_all(places.stateFolder);
    std::filesystem::create_directories(places.folder);
    disk.failAt = 0;
    Reopen();
    (void)Begin("before");
    std::ofstream(File(), std::ios::binary | std::ios::app) << "torn";
    disk.failAt = failAt;
    disk.calls = 0;
    disk.failed.clear();
    const std::uint64_t number = Begin("during");
    const std::string failed = disk.failed;
    disk.failAt = 0;
    failures += number == 0 ? 1 : 0;
    EXPECT_EQ(Bytes(1).contains("during"), number != 0) << failAt << failed;
    EXPECT_NE(Begin("after"), 0U) << failAt << failed;
    EXPECT_EQ(Findings(), "") << failAt << " " << failed;
    Reopen();
    EXPECT_NE(Begin("later"), 0U) << failAt << failed;
    EXPECT_EQ(Findings(), "") << failAt << " " << failed;
    const bool isFinal = failed == "flush" || failed == "write" || failed == "truncate";
    EXPECT_EQ(std::filesystem::exists(File(2)), isFinal && number == 0) << "after a failed " << failed;
    if (failed.empty()) break;
  }
  EXPECT_GE(failures, 5);
}

TEST_F(ChangeJournalTest, SaysWhatKeepsItFromWriting) {
  std::filesystem::remove_all(places.folder);
  std::ofstream(places.folder) << "a file in the place of the session's folder";
  EXPECT_FALSE(journal->Prepare());
  std::filesystem::remove(places.folder);
  EXPECT_TRUE(journal->Prepare()) << "a session's folder is made anew";
  std::ofstream(places.stateFolder) << "in the way";
  EXPECT_NE(Begin(), 0U);
  EXPECT_THAT(journal->HeadTrouble(), testing::HasSubstr("cannot be kept in"));
  places.stateFolder.clear();
  Reopen();
  EXPECT_NE(Begin(), 0U);
  EXPECT_THAT(journal->HeadTrouble(), testing::HasSubstr("is kept nowhere"));
  disk.writeProtected = File();
  EXPECT_FALSE(journal->Prepare()) << "so that the question comes, and not a refusal later";
}

}  // namespace
}  // namespace kv
