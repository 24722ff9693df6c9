#include <gmock/gmock.h>

#include "clone/CloneFrame.h"
#include "tests/clone/CloneFixture.h"

// clang-format off: the tables are laid out by hand
namespace kv::test {
namespace {

using testing::HasSubstr;

constexpr const char* kHead = "Korvantis Clone File:\tV100\ta\tb\r\nK220-22-R1\t10\t4.60\t19\r\nMM,3145728,4\t\r\n\r\n";
constexpr const char* kFirst = "/01WDR0030000002ABCD3D\r";
constexpr const char* kLast = "/01EDEA\r";

// A port whose partner answers each line with what the test says, so much later.
class FakePort : public SerialPortObject {
 public:
  explicit FakePort(CloneFixture& fixture) : mFixture(fixture) {}

  std::function<std::string(int number)> answer = [](int) { return "/01WDOK12345678\r"; };
  Duration delay = std::chrono::milliseconds(4);
  int downAt = 0;  // the link is down from this line on
  int sent = 0;

  void SetInBufferCount(std::size_t count) override { mWaiting.resize(count); }
  bool Output(std::string_view bytes) override {
    mFixture.channel.calls.push_back("Out " + std::string(bytes));
    if (++sent == downAt) return false;
    mFixture.pacer.After(delay, [this, reply = answer(sent)] { mWaiting += reply; });
    return true;
  }
  std::string Input() override { return std::exchange(mWaiting, {}); }
  std::size_t InBufferSize() const override { return 1024; }

 private:
  CloneFixture& mFixture;
  std::string mWaiting = "/01WDOK left over\r";
};

// The restore of `content`, with as many boxes closed as it shall show.
CloneOutcome RestoreOf(CloneFixture& fixture, FakePort& port, const std::string& content, int boxes) {
  fixture.folder.Put("clone.kdf", content);
  while (boxes-- > 0) fixture.prompts.Press(PromptAnswer::Ok);
  return fixture.Restore(port);
}
const std::string kFile = std::string(kHead) + kFirst + "\r\n" + kLast + "\r\n";

TEST(RestoreGhost, SendsTheLinesOfTheFileAsTheyAreAndWaitsForAnOkToEach) {
  CloneFixture fixture;
  FakePort port(fixture);
  EXPECT_EQ(RestoreOf(fixture, port, kFile, 2).end, CloneEnd::Done);

  FakePort second(fixture);
  EXPECT_EQ(RestoreOf(fixture, second, kHead, 2).end, CloneEnd::Done);  // four head lines restore nothing
}

TEST(RestoreGhost, JudgesRepliesByOkAloneAndByTenSeconds) {
  using namespace std::chrono_literals;
  struct Row {
    std::string answer;
    Duration delay;
    std::string reason;  // empty: it is good
  };
  const std::vector<Row> rows = {
      {"/01WDOK\r", 9900ms, ""}, {"/01WDOK\r", 10100ms, "no reply within 10 s"}, {"", 0ms, "no reply within 10 s"},
      {"/01WDOK", 0ms, "no reply within 10 s"}, {"noise OK\r", 0ms, ""}, {"/01WDERROR07AB\r", 0ms, "(code 07)"},
      {"/01WD\xFFKO\r", 0ms, "no OK"}, {std::string(2000, 'x'), 0ms, "does not end"},
      {std::string(1015, 'x'), 0ms, "does not end"}, {std::string(1010, 'x') + "OK\r/", 0ms, ""},
      {"\r\xFE\r/01WDOK\r", 0ms, ""}, {"\r/01WDERROR07AB\r", 0ms, "(code 07)"}, {"NO\r", 0ms, "no reply within 10 s"}};
  for (const Row& row : rows) {
    CloneFixture fixture;
    FakePort port(fixture);
    port.answer = [&](int) { return row.answer; };
    port.delay = row.delay;
    const CloneOutcome outcome = RestoreOf(fixture, port, kFile, row.reason.empty() ? 2 : 3);
    EXPECT_EQ(outcome.end == CloneEnd::Done, row.reason.empty()) << row.answer << row.reason;
    if (row.reason.empty()) continue;
    EXPECT_EQ(outcome.cause, CloneCause::Reply);
    EXPECT_THAT(outcome.reason, HasSubstr("Line 5 of the clone file: "));
    EXPECT_THAT(outcome.reason, HasSubstr(row.reason));
    EXPECT_EQ(port.sent, 1);
    const bool isUnsure = outcome.reason.find("may have taken the line") != std::string::npos;
    EXPECT_EQ(isUnsure, !row.answer.contains("ERROR")) << row.answer;  // a refused line has changed nothing
  }
}

TEST(RestoreGhost, EndsAtAStopOrALostLinkAndTellsWhatIsLeft) {
  for (const int at : {1, 2}) {
    CloneFixture fixture;
    FakePort port(fixture);
    port.answer = [&](int number) {
      if (number == at) fixture.running->StopDump();
      return "/01OK\r";
    };
    const CloneOutcome outcome = RestoreOf(fixture, port, kFile, 2);
    EXPECT_EQ(outcome.end, CloneEnd::Stopped);
    EXPECT_EQ(port.sent, at);
    EXPECT_THAT(outcome.reason, HasSubstr(at == 1 ? "1 of 2 lines" : "All lines"));

    CloneFixture other;
    FakePort down(other);
    down.downAt = at;
    EXPECT_EQ(RestoreOf(other, down, kFile, 2).cause, CloneCause::Link);
    EXPECT_EQ(down.sent, at);
  }
}

TEST(RestoreGhost, SaysSuccessOnlyOfAWholeFileThatStayedAsItWasCounted) {
  struct Row {
    std::string content;
    std::string meanwhile;  // what it becomes when it has been counted
    std::string reason;     // empty: success
    int boxes;
  };
  const std::string first = std::string(kHead) + kFirst + "\r\n";
  const std::vector<Row> rows = {
      {kFile, kFile, "", 2},
      {kFile, first, "it had 2 command lines before, and now has 1", 2},
      {kFile, kHead, "and now has 0", 2},
      {kFile, std::string(kHead) + "/01WDR0030000002ABCE3E\r\r\n" + kLast + "\r\n", "what was sent is part of both", 2},
      {kFile, first + kFirst + "\r\n" + kLast + "\r\n", "and now has more", 2},
      {first, first, "it has no end frame, so the controller still waits", 2},
      {std::string(kHead).substr(0, first.find('\n') + 1), "", "line 2", 1},
      {kFile + std::string(10'000'000, 'F'), "", "line 7: it is longer", 2}};
  for (const Row& row : rows) {
    CloneFixture fixture;
    FakePort port(fixture);
    fixture.window.onBar = [&] { fixture.folder.Put("clone.kdf", row.meanwhile); };
    const CloneOutcome outcome = RestoreOf(fixture, port, row.content, row.boxes);
    EXPECT_EQ(outcome.end, row.reason.empty() ? CloneEnd::Done : CloneEnd::Failed) << row.reason;
    EXPECT_THAT(outcome.reason, HasSubstr(row.reason));
  }
  CloneFixture fixture;
  FakePort port(fixture);
  fixture.folder.Put("clone.kdf", kFile);
  clsDumpPLC engine(fixture.window, fixture.prompts, fixture.pacer, fixture.pacer);
  engine.ExpectDigest(Sha256().Hex());
  for (int box = 0; box < 2; ++box) fixture.prompts.Press(PromptAnswer::Ok);
  engine.RestoreGhost(port, fixture.file);
  EXPECT_THAT(engine.Outcome().reason, HasSubstr("not the file any more that was looked through"));
  EXPECT_EQ(port.sent, 0);
}

TEST(RestoreReach, SaysOfTheProgramWhatIsKnownAndNoMore) {
  struct Row {
    RestoreReach reach;
    char state;  // as the controller tells it afterwards; blank: it does not answer
    std::vector<std::string> said;
  };
  const std::vector<Row> rows = {
      {{9, 0, false, false}, 'R', {}},
      {{9, 0, true, false}, 'R', {"may have taken the line", "its program runs on memory that may be a mixture"}},
      {{9, 4, false, false}, 'L', {"4 of 9 lines", "When it answered last, its program was stopped. Restore", "it is loading"}},
      {{9, 4, true, false}, 'R', {"4 of 9 lines", "If it has lost its power since", "runs on memory that may be a mixture"}},
      {{9, 4, true, false}, ' ', {"If it has lost its power since", "did not tell: no reply"}},
      {{9, 8, true, true}, 'R', {"All lines but the end frame", "all of the clone is in it"}},
      {{9, 8, true, true}, 'L', {"All lines but the end frame", "its program is stopped"}},
      {{9, 9, false, false}, 'R', {"All lines of the clone file were written", "runs, with the clone"}}};
  for (const Row& row : rows) {
    CloneFixture fixture;
    fixture.pacer.RequestStop();
    if (row.state != ' ') fixture.channel.info = Channel::ControllerInfo{1, row.state, ""};
    const std::string text = LeftText(row.reach) + "\n" + AskWhatIsLeft(row.reach, fixture.channel, fixture.pacer);
    for (const std::string& said : row.said) EXPECT_THAT(text, HasSubstr(said));
    if (row.said.empty()) {
      EXPECT_EQ(text, "\n");
    }
    EXPECT_EQ(text.find("is stopped. Restore") != std::string::npos, row.state == 'L') << text;
  }
}

}  // namespace
}  // namespace kv::test
