#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "clone/CloneFrame.h"
#include "tests/clone/CloneBench.h"

// clang-format off: the tables are laid out by hand
namespace kv::test {
namespace {

using testing::HasSubstr;

constexpr const char* kNotReady = "Box ( ) Korvantis PLC Cloner: PLC Reply Error, the PLC is not ready for Cloning";
constexpr const char* kHead = "Korvantis Clone File:\tV100\ta\tb\r\nK220-22-R1\t10\t4.60\t19\r\nMM,3145728,4\t\r\n\r\n";
constexpr const char* kFirst = "/01WDR0030000002ABCD3D\r";
constexpr const char* kLast = "/01EDEA\r";

// A port whose partner answers each line with what the test says, so much later.
class FakePort : public SerialPortObject {
 public:
  explicit FakePort(CloneBench& bench) : mBench(bench) {}

  std::function<std::string(int number)> answer = [](int) { return "/01WDOK12345678\r"; };
  Duration delay = std::chrono::milliseconds(4);
  int downAt = 0;  // the link is down from this line on
  int sent = 0;

  void SetInBufferCount(std::size_t count) override { mWaiting.resize(count); }
  bool Output(std::string_view bytes) override {
    mBench.channel.calls.push_back("Out " + std::string(bytes));
    if (++sent == downAt) return false;
    mBench.pacer.After(delay, [this, reply = answer(sent)] { mWaiting += reply; });
    return true;
  }
  std::string Input() override { return std::exchange(mWaiting, {}); }
  std::size_t InBufferSize() const override { return 1024; }

 protected:
  [[nodiscard]] bool HasInput() const { return !mWaiting.empty(); }
  void Add(std::string_view bytes) { mWaiting += bytes; }

 private:
  CloneBench& mBench;
  std::string mWaiting = "/01WDOK left over\r";
};

// The restore of `content`, with as many boxes closed as it shall show.
CloneOutcome RestoreOf(CloneBench& bench, FakePort& port, const std::string& content, int boxes) {
  bench.folder.Put("clone.kdf", content);
  while (boxes-- > 0) bench.prompts.Press(PromptAnswer::Ok);
  return bench.Restore(port);
}
const std::string kFile = std::string(kHead) + kFirst + "\r\n" + kLast + "\r\n";

TEST(RestoreGhost, SendsTheLinesOfTheFileAsTheyAreAndWaitsForAnOkToEach) {
  CloneBench bench;
  FakePort port(bench);
  EXPECT_EQ(RestoreOf(bench, port, kFile, 2).end, CloneEnd::Done);
  const std::string box = "Box ( ) Korvantis PLC Cloner: ";
  const std::string good = "Box (i) Korvantis PLC Cloner: Clone Restore Successfully.";
  const std::string head = std::string(kHead).substr(0, std::string(kHead).size() - 4);
  EXPECT_EQ(bench.channel.calls,
            (CallLog{box + head, "Bar 0..2", std::string("Line ") + kFirst, std::string("Out ") + kFirst, "Bar 1",
                     std::string("Line ") + kLast, std::string("Out ") + kLast, "Bar 2", good}));
  EXPECT_EQ(bench.pacer.Now().time_since_epoch(), std::chrono::milliseconds(40));  // two turns a line

  FakePort second(bench);
  EXPECT_EQ(RestoreOf(bench, second, kHead, 2).end, CloneEnd::Done);  // four head lines restore nothing
  EXPECT_EQ(bench.channel.calls, (CallLog{box + head, "Bar 0..0", good}));
}

// A port that can wait, and a partner whose replies say which line they answer.
class SealedPort : public FakePort {
 public:
  explicit SealedPort(CloneBench& bench) : FakePort(bench), mBench(bench) {
    delay = std::chrono::milliseconds(1);
    answer = [this](int) { return ReplyTo(mLast); };
  }

  std::optional<Duration> doubledAfter;  // the first reply comes once more
  int silentFrom = 1000;                 // this line and all behind it are not answered

  static std::string ReplyTo(std::string_view frame) { return "/01OK" + std::string(frame.substr(1)); }

  bool Output(std::string_view bytes) override {
    mLast = bytes;
    if (sent == 0 && doubledAfter) mBench.pacer.After(delay + *doubledAfter, [this, again = ReplyTo(bytes)] { Add(again); });
    if (sent + 1 < silentFrom) return FakePort::Output(bytes);
    ++sent;
    return true;
  }
  bool WaitForInput(Duration span) override {
    constexpr Duration kStep = std::chrono::microseconds(100);
    for (Duration waited{}; waited < span && !HasInput(); waited += kStep) mBench.pacer.Sleep(kStep);
    return HasInput();
  }
  bool IsReplyTo(std::string_view frame, std::string_view bytes) const override { return bytes == ReplyTo(frame); }

 private:
  CloneBench& mBench;
  std::string mLast;
};

TEST(RestoreGhost, WaitsNoLongerThanForAReplyThatIsBeyondDoubt) {
  CloneBench bench;
  SealedPort port(bench);
  EXPECT_EQ(RestoreOf(bench, port, kFile, 2).end, CloneEnd::Done);
  EXPECT_EQ(bench.pacer.Now().time_since_epoch(), std::chrono::milliseconds(2));  // the time of the replies

  CloneBench noisy;
  SealedPort untidy(noisy);
  untidy.answer = [](int) { return "/01OK\r"; };  // of whatever line
  EXPECT_EQ(RestoreOf(noisy, untidy, kFile, 2).end, CloneEnd::Done);
  EXPECT_EQ(noisy.pacer.Now().time_since_epoch(), std::chrono::milliseconds(40));
}

TEST(RestoreGhost, NeverTakesADoubledReplyForTheNextLines) {
  for (const int after : {0, 1, 5, 9, 15, 30, 5000}) {
    CloneBench bench;
    SealedPort port(bench);
    port.doubledAfter = std::chrono::milliseconds(after);
    EXPECT_EQ(RestoreOf(bench, port, kFile, 2).end, CloneEnd::Done) << after;
    EXPECT_EQ(port.sent, 2);

    CloneBench silent;
    SealedPort deaf(silent);
    deaf.doubledAfter = std::chrono::milliseconds(after);
    deaf.silentFrom = 2;
    EXPECT_THAT(RestoreOf(silent, deaf, kFile, 3).reason, HasSubstr("no reply within 10 s")) << after;
  }
}

TEST(RestoreGhost, ReadsLinesThatLostTheirLineEnds) {
  std::string lineFeeds = kFile;
  for (std::size_t at = 0; (at = lineFeeds.find("\r\n", at)) != std::string::npos;) lineFeeds.erase(at, 1);
  for (const std::string& content :
       {lineFeeds, kFile.substr(0, kFile.size() - 2), kFile.substr(0, kFile.size() - 1)}) {
    CloneBench bench;
    FakePort port(bench);
    EXPECT_EQ(RestoreOf(bench, port, content, 2).end, CloneEnd::Done);
    EXPECT_EQ(bench.channel.calls.at(3), std::string("Out ") + kFirst);
    EXPECT_THAT(bench.channel.calls.at(6), HasSubstr(kLast));
  }
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
    CloneBench bench;
    FakePort port(bench);
    port.answer = [&](int) { return row.answer; };
    port.delay = row.delay;
    const CloneOutcome outcome = RestoreOf(bench, port, kFile, row.reason.empty() ? 2 : 3);
    EXPECT_EQ(outcome.end == CloneEnd::Done, row.reason.empty()) << row.answer << row.reason;
    if (row.reason.empty()) continue;
    EXPECT_EQ(outcome.cause, CloneCause::Reply);
    EXPECT_THAT(outcome.reason, HasSubstr("Line 5 of the clone file: "));
    EXPECT_THAT(outcome.reason, HasSubstr(row.reason));
    EXPECT_EQ(port.sent, 1);
    const bool isUnsure = outcome.reason.find("may have taken the line") != std::string::npos;
    EXPECT_EQ(isUnsure, !row.answer.contains("ERROR")) << row.answer;  // a refused line has changed nothing
    EXPECT_EQ(CallLog(bench.channel.calls.end() - 2, bench.channel.calls.end()), (CallLog{kNotReady, kFailed}));
  }
}

TEST(RestoreGhost, EndsAtAStopOrALostLinkAndTellsWhatIsLeft) {
  for (const int at : {1, 2}) {
    CloneBench bench;
    FakePort port(bench);
    port.answer = [&](int number) {
      if (number == at) bench.running->StopDump();
      return "/01OK\r";
    };
    const CloneOutcome outcome = RestoreOf(bench, port, kFile, 2);
    EXPECT_EQ(outcome.end, CloneEnd::Stopped);
    EXPECT_EQ(port.sent, at);
    EXPECT_THAT(outcome.reason, HasSubstr(at == 1 ? "1 of 2 lines" : "All lines"));
    EXPECT_EQ(bench.channel.calls.back(), kFailed);

    CloneBench other;
    FakePort down(other);
    down.downAt = at;
    EXPECT_EQ(RestoreOf(other, down, kFile, 2).cause, CloneCause::Link);
    EXPECT_EQ(down.sent, at);
    EXPECT_EQ(other.channel.calls.back(), kFailed);
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
      {first, first, "it has no end frame, so the controller still waits", 2}};
  for (const Row& row : rows) {
    CloneBench bench;
    FakePort port(bench);
    bench.window.onBar = [&] { bench.folder.Put("clone.kdf", row.meanwhile); };
    const CloneOutcome outcome = RestoreOf(bench, port, row.content, row.boxes);
    EXPECT_EQ(outcome.end, row.reason.empty() ? CloneEnd::Done : CloneEnd::Failed) << row.reason;
    EXPECT_THAT(outcome.reason, HasSubstr(row.reason));
  }
}

TEST(RestoreGhost, SendsNothingOfAFileThatIsNotTheOneThatWasLookedThrough) {
  CloneBench bench;
  FakePort port(bench);
  bench.folder.Put("clone.kdf", kFile);
  clsDumpPLC engine(bench.window, bench.prompts, bench.pacer, bench.pacer);
  engine.ExpectDigest(Sha256().Hex());
  for (int box = 0; box < 2; ++box) bench.prompts.Press(PromptAnswer::Ok);
  engine.RestoreGhost(port, bench.file);
  EXPECT_THAT(engine.Outcome().reason, HasSubstr("not the file any more that was looked through"));
  EXPECT_EQ(port.sent, 0);
}

TEST(RestoreGhost, SendsTheLinesForAnotherUnitWhenToldTo) {
  CloneBench bench;
  FakePort port(bench);
  bench.folder.Put("clone.kdf", std::string(kHead) + kFirst + "\r\n/01noise\r\r\n" + kLast + "\r\n");
  bench.prompts.Press(PromptAnswer::Ok);
  bench.prompts.Press(PromptAnswer::Ok);
  clsDumpPLC engine(bench.window, bench.prompts, bench.pacer, bench.pacer);
  engine.UseUnit(0x2A);
  engine.RestoreGhost(port, bench.file);
  EXPECT_EQ(engine.Outcome().end, CloneEnd::Done);
  CallLog sent;
  for (const std::string& call : bench.channel.calls) {
    if (call.starts_with("Out ")) sent.push_back(call.substr(4));
  }
  EXPECT_EQ(sent, (CallLog{"/2AWDR0030000002ABCD4F\r", "/01noise\r", "/2AEDFC\r"}));  // damage stays damage
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
    CloneBench bench;
    bench.pacer.RequestStop();
    if (row.state != ' ') bench.channel.info = Channel::ControllerInfo{1, row.state, ""};
    const std::string text = LeftText(row.reach) + "\n" + AskWhatIsLeft(row.reach, bench.channel, bench.pacer);
    for (const std::string& said : row.said) EXPECT_THAT(text, HasSubstr(said));
    if (row.said.empty()) {
      EXPECT_EQ(text, "\n");
    }
    EXPECT_EQ(text.find("is stopped. Restore") != std::string::npos, row.state == 'L') << text;
  }
}

TEST(RestoreReach, IsNoSuccessWhenAnOkWasNotTheControllersOwn) {
  struct Row {
    RestoreReach reach;
    Channel::ControllerInfo now;
    const char* said;
  };
  const Row rows[] = {{{.lines = 9, .written = 9}, {7, 'R', ""}, ""},
                      {{.lines = 0, .written = 0}, {7, 'L', ""}, ""},  // four head lines restore nothing
                      {{.lines = 9, .written = 9}, {7, 'L', ""}, "it is loading"},
                      {{.lines = 9, .written = 9}, {8, 'R', ""}, "but by whom is not known"},
                      {{.lines = 9, .written = 9, .unproven = 3, .firstUnproven = 7}, {7, 'R', ""}, "Line 7 of the clone file and 2 more"}};
  for (const Row& row : rows) {
    CloneBench bench;
    bench.channel.info = row.now;
    const auto checked = CheckAfterRestore(row.reach, bench.channel, {7, 'R', ""});
    EXPECT_EQ(checked.has_value(), *row.said == '\0');
    if (!checked) {
      EXPECT_THAT(checked.error().reason, HasSubstr(row.said));
    }
  }
}

TEST(RestoreGhost, SendsNothingOfAFileThatCannotBeReadToItsEnd) {
  const std::string head = kHead;
  const std::vector<std::tuple<std::string, int, std::string>> rows = {
      {"", 1, "line 1"},
      {head.substr(0, head.find('\n') + 1), 1, "line 2"},
      {head.substr(0, head.size() - 2), 2, "line 4"},
      {std::string(10'000'000, 'x'), 1, "line 1: it is longer"},
      {kFile + std::string(10'000'000, 'F'), 2, "line 7: it is longer"}};
  for (const auto& [content, boxes, reason] : rows) {
    CloneBench bench;
    FakePort port(bench);
    const CloneOutcome outcome = RestoreOf(bench, port, content, boxes);
    EXPECT_EQ(outcome.cause, CloneCause::File);
    EXPECT_THAT(outcome.reason, HasSubstr(reason));
    EXPECT_THAT(outcome.reason, HasSubstr("clone.kdf"));
    EXPECT_EQ(port.sent, 0);
    EXPECT_EQ(bench.channel.calls.back(), kFailed);
  }
  CloneBench bench;
  FakePort port(bench);
  bench.window.onBar = [&] { std::filesystem::remove(bench.file); };  // all is counted, nothing is sent
  EXPECT_THAT(RestoreOf(bench, port, kFile, 2).reason, HasSubstr("does not exist"));
#ifndef _WIN32
  bench.folder.Put("clone.kdf", kFile);
  bench.prompts.Press(PromptAnswer::Ok);
  const WithoutRights withoutRights(bench);
  EXPECT_THAT(bench.Restore(port).reason, HasSubstr("check the rights to it"));
#endif
  EXPECT_EQ(port.sent, 0);
}

}  // namespace
}  // namespace kv::test
