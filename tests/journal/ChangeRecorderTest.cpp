#include "journal/ChangeRecorder.h"

#include "desktop/ScriptedPrompts.h"
#include "journal/JournalList.h"
#include "sessions/SessionIni.h"
#include "tests/journal/JournalFixture.h"
#include "tests/support/SessionFixture.h"

namespace kv {
namespace {

struct ChangeRecorderTest : testing::Test, test::SessionFixture {
  VirtualPacer pacer;
  ScriptedPrompts asked{[](const std::string& what) { ADD_FAILURE() << what; }};
  test::FaultyDisk disk;
  std::vector<std::string> told;
  std::filesystem::path state = SessionFolder(shared).parent_path() / "state";
  const RecorderParts parts{.shared = shared,
                            .stateFolder = state,
                            .disk = disk,
                            .prompts = asked,
                            .pacer = pacer,
                            .clock = pacer,
                            .tell = [this](const std::string& text) { told.push_back(text); },
                            .cure = "or say otherwise"};
  ChangeRecorder recorder{parts};
  const ChangeRequest request{"unit 1: write MI 0", {"K220-22-R1", 7, "Mixer"}, "COM3"};

  ChangeRecorderTest() { shared.UserName = "anna"; }
  // What the user was asked and told, and what is in the journal at the end.
  ~ChangeRecorderTest() override {
    std::string all = Recorded() + recorder.Head() + "\n";
    for (const MessageBox& box : asked.Boxes()) all += box.title + ": " + box.text + "\n";
    for (const InputBox& box : asked.Inputs()) all += box.title + ": " + box.text + "\n";
    for (const std::string& text : told) all += text + "\n";
    test::ExpectAsRecorded([&] {
      return std::regex_replace(test::WithoutHome(all, home.Path()), std::regex("[0-9a-f]{64}|\r|\\([^)]*\\)"), "#");
    });
  }

  [[nodiscard]] JournalPlaces Places() const { return {SessionFolder(shared), state}; }
  // "2 anna write done", a line an entry.
  [[nodiscard]] std::string Recorded() {
    std::string text;
    for (const JournalEntry& entry : ListJournal(Places(), SystemJournalDisk(), pacer, {}).entries) {
      if (entry.record.kind == RecordKind::Start) continue;
      text += entry.record.user + "|" + entry.What() + "|" + entry.record.reason + "|" + entry.Result() + "\n";
    }
    return text;
  }
  bool Send(ChangeResult result = ChangeResult::Done) {
    if (!recorder.BeforeRequest(request)) return false;
    recorder.AfterRequest({result, ""});
    return true;
  }
};

TEST_F(ChangeRecorderTest, RecordsAnOperationOnceHoweverManyRequestsItTakes) {
  {
    OperationScope restoring(&recorder, {"Cloner", "restore"});
    EXPECT_EQ(Recorded(), "") << "nothing has been sent";
    for (int i = 0; i < 700; ++i) EXPECT_TRUE(Send(ChangeResult::Sent));
    {
      const OperationScope inner(&recorder, {"Cloner", "erase"});
    }
    EXPECT_EQ(Recorded(), "anna|restore||begun, and not ended\n") << "before the first request";
    restoring.End({ChangeResult::Failed, "the link broke"});
  }
  {
    const OperationScope reading(&recorder, {"Operand view", "read"});
  }
  {
    const OperationScope writing(&recorder, {"Operand view", "write"});
    EXPECT_TRUE(Send(ChangeResult::Refused));
    EXPECT_TRUE(Send());
  }
  EXPECT_TRUE(Send());
}

TEST_F(ChangeRecorderTest, AnOperationHasTheResultOfItsWorstRequest) {
  using enum ChangeResult;
  const std::pair<ChangeResult, const char*> rising[] = {
      {Done, "done"}, {Sent, "sent"}, {Stopped, "stopped"}, {Refused, "failed"}, {Failed, "failed"}};
  for (std::size_t i = 1; i < std::size(rising); ++i) {
    for (const bool isWorstLast : {true, false}) {
      {
        const OperationScope writing(&recorder, {"Operand view", "write"});
        EXPECT_TRUE(Send(rising[isWorstLast ? i - 1 : i].first));
        EXPECT_TRUE(Send(rising[isWorstLast ? i : i - 1].first));
      }
      const std::string recorded = Recorded();
      EXPECT_THAT(recorded.substr(recorded.rfind('|')), testing::StartsWith("|" + std::string(rising[i].second)));
    }
  }
}

TEST_F(ChangeRecorderTest, RefusesWhatItCannotRecordUnlessTheUserSaysOtherwise) {
  std::filesystem::remove_all(SessionFolder(shared));
  std::ofstream(SessionFolder(shared)) << "in the way";
  asked.Press(PromptAnswer::No);
  {
    const OperationScope writing(&recorder, {"Operand view", "write"});
    const auto refused = recorder.BeforeRequest(request);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, LinkErrorCode::NotRecorded);
    EXPECT_TRUE(refused.error().isNotExecuted);
    EXPECT_THAT(refused.error().cure, testing::HasSubstr("256 KiB"));
    EXPECT_THAT(refused.error().cure, testing::HasSubstr("or say otherwise"));
    std::filesystem::remove(SessionFolder(shared));
    EXPECT_FALSE(Send()) << "the rest of what was refused, though it could be recorded now";
    std::ofstream(SessionFolder(shared)) << "in the way";
  }
  EXPECT_FALSE(Send()) << "a request of its own asks nobody";
  asked.Press(PromptAnswer::Yes);
  {
    const OperationScope writing(&recorder, {"Operand view", "write"});
    EXPECT_TRUE(Send());
  }
  {
    const OperationScope again(&recorder, {"Operand view", "write"});
    EXPECT_TRUE(Send()) << "one question for the session";
  }
  EXPECT_THAT(told, testing::Contains("Not recorded in the change journal, which cannot be written: write.").Times(2));
  std::filesystem::remove(SessionFolder(shared));
  {  // by another run of the program
    ChangeRecorder later(parts);
    const OperationScope again(&later, {"Operand view", "write"});
    EXPECT_TRUE(later.BeforeRequest(request));
  }
  EXPECT_THAT(Recorded(), testing::HasSubstr("2 operations before this one changed controllers without a record"));
}

// Also without an operation around it, and however often the way to the journal is blocked and free again.
TEST_F(ChangeRecorderTest, RecordsTheNextRequestAsSoonAsTheJournalCanBeWritten) {
  for (int time = 1; time <= 2; ++time) {
    std::filesystem::remove_all(SessionFolder(shared));
    std::ofstream(SessionFolder(shared)) << "in the way";
    EXPECT_FALSE(Send());
    EXPECT_FALSE(Send()) << "and it stays in the way";
    std::filesystem::remove(SessionFolder(shared));
    EXPECT_TRUE(Send()) << "the folder is made anew, time " << time;
    EXPECT_TRUE(Send());
    EXPECT_THAT(Recorded(), testing::EndsWith("unit 1: write MI 0||done\n"));
  }
}

TEST_F(ChangeRecorderTest, AsksForAReasonWhereTheSessionWantsOne) {
  Put("KvTeleExe.ini", "[KvTeleExe]\r\nAskReason=1\r\n");
  for (const char* reason : {"", "  ", "new recipe"}) {
    asked.Enter(reason);
    const OperationScope writing(&recorder, {"Operand view", "write"});
    EXPECT_EQ(Send(), std::string(reason) == "new recipe");
  }
  recorder.UseReason("by script");
  const OperationScope writing(&recorder, {"kvtele", "write"});
  EXPECT_TRUE(Send());
  EXPECT_THAT(Recorded(), testing::HasSubstr("|new recipe|"));
  EXPECT_THAT(Recorded(), testing::HasSubstr("|by script|"));
}

TEST_F(ChangeRecorderTest, RecordsTheEndInAnotherFileOrTellsThatItCouldNot) {
  const auto write = [this](bool failsOn) {
    const OperationScope writing(&recorder, {"Operand view", "write"});
    EXPECT_TRUE(Send());
    disk.calls = 0;
    disk.failAt = 6;  // the write
    disk.failsOn = failsOn;
  };
  write(false);
  EXPECT_EQ(disk.failed, "write");
  EXPECT_THAT(told, testing::IsEmpty());
  EXPECT_THAT(Recorded(), testing::HasSubstr("|write||done\n"));
  write(true);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_THAT(told.front(), testing::HasSubstr("begun and not ended"));
}

}  // namespace
}  // namespace kv
