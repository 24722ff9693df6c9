#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

enum class Kind { Read, Placing, Once, BlockRead, BlockWrite };

struct Request {
  const char* name;
  const char* start;  // of its text
  const char* key;    // under which the controller counts it
  Kind kind;
  bool (*run)(Channel& channel);
};

bool RunCommand(Channel& channel, const char* command, std::string_view reply) {
  const auto answer = channel.SendCommand(command);
  return answer && answer->text.starts_with(reply);
}

bool RunBlock(Channel& channel, std::uint16_t opCode) {
  DownloadEngine* engine = channel.GetDownloadEngine();
  if (engine == nullptr) return false;
  engine->SetMessage({.opCode = opCode, .param1 = 0x10, .dataLength = 4, .param3 = 0, .param4 = 0});
  return engine->Send() && engine->ReplyStatus() == kBlockDone;
}

const Request kRequests[] = {
    {"settled read", "ID", "", Kind::Read, [](Channel& c) { return c.GetVersionInfo(1)->model == "K220-22-R1"; }},
    {"tagged read", "RO", "", Kind::Read,
     [](Channel& c) { return c.ReadMI(5, 3, 1) == std::vector<std::int16_t>{5, 6, 7}; }},
    {"memory", "block 257", "", Kind::BlockRead,
     [](Channel& c) { return c.ReadMemoryBlock(0x20, 3, 1) == Bytes{0x20, 0x21, 0x22}; }},
    {"placing", "LN", "LN41", Kind::Placing, [](Channel& c) { return RunCommand(c, "LN41", "LNOK"); }},
    {"stop", "CCS", "CCS", Kind::Once, [](Channel& c) { return c.StopController(1); }},
    {"write", "WO", "WO03000000010007", Kind::Once,
     [](Channel& c) { return c.WriteMI(0, std::vector<std::int16_t>{7}, 1); }},
    {"block write", "block 66", "block 66", Kind::BlockWrite, [](Channel& c) { return RunBlock(c, 66); }},
};

struct FaultRow {
  Fault fault;
  const char* name;
};

// Faults that a request gets over by itself.
constexpr FaultRow kPassing[] = {
    {Fault::NotHeard, "not heard"}, {Fault::NoReply, "no reply"},     {Fault::Late, "late"},
    {Fault::Doubled, "doubled"},    {Fault::Dribbled, "dribbled"},    {Fault::Cut, "cut"},
    {Fault::Damaged, "damaged"},    {Fault::WrongUnit, "wrong unit"}, {Fault::Echo, "echo"},
    {Fault::OldReply, "old reply"}, {Fault::Garbage, "garbage"},
};

// 3 x (time-out + time on the wire), the wire being that of a request, its reply and getting in step.
constexpr Duration kDeadline = 3 * (1s + 87us * 2200);

TEST(Exchange, GetsOverEveryFaultThatPasses) {
  for (const Request& request : kRequests) {
    for (const FaultRow& row : kPassing) {
      for (const int times : {1, 2}) {
        SCOPED_TRACE(std::string(request.name) + ", " + row.name + " x " + std::to_string(times));
        Bench bench;
        bench.Arm(request.start, row.fault, times);
        const Instant start = bench.pacer.Now();
        EXPECT_TRUE(request.run(bench.channel)) << bench.channel.LastError().Text();
        EXPECT_LE(bench.pacer.Now() - start, kDeadline);
        if (request.kind == Kind::Once || request.kind == Kind::BlockWrite) {
          EXPECT_EQ(bench.controller.timesExecuted[request.key], 1);
        }
        // What is still on its way belongs to nobody: the next requests get their own answers.
        EXPECT_EQ(bench.channel.ReadMI(40, 1, 1), (std::vector<std::int16_t>{40}));
        EXPECT_TRUE(request.run(bench.channel));
        EXPECT_EQ(bench.controller.connections, 1);
      }
    }
  }
}

TEST(Exchange, FaultThatStaysEndsInTimeWithTheRightReason) {
  using enum LinkErrorCode;
  for (const Request& request : kRequests) {
    const struct {
      Fault fault;
      LinkErrorCode code;
    } rows[] = {
        {Fault::NotHeard, NoReply},
        {Fault::Cut, request.kind == Kind::Once ? None : Damaged},  // SY tells that it was done
        {Fault::Garbage, request.kind == Kind::Once ? None : Damaged},
        {Fault::Refused, request.kind == Kind::Placing || request.kind == Kind::BlockWrite ? None : Busy},
    };
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(request.name) + ", fault " + std::to_string(static_cast<int>(row.fault)));
      Bench bench;
      bench.Arm(request.start, row.fault, 1000);
      const Instant start = bench.pacer.Now();
      const bool isDone = request.start == std::string("ID") && row.code != None
                              ? bench.channel.GetVersionInfo(1).has_value()
                              : request.run(bench.channel);
      EXPECT_EQ(isDone, row.code == None && row.fault != Fault::Refused);
      EXPECT_EQ(bench.channel.LastError().code, row.code) << bench.channel.LastError().Text();
      EXPECT_LE(bench.pacer.Now() - start, kDeadline);
      EXPECT_LE(bench.controller.timesExecuted[request.key], request.kind == Kind::Placing ? 3 : 1);
    }
  }
}

TEST(Exchange, RefusalIsNeverRepeated) {
  Bench bench;
  bench.Arm("RO", Fault::Refused, 1000);
  const std::size_t before = bench.controller.executed.size();
  EXPECT_FALSE(bench.channel.ReadMI(0, 60, 1));
  EXPECT_EQ(bench.controller.executed.size(), before);  // a refused request executes nothing, and nothing followed it
  const LinkError& error = bench.channel.LastError();
  EXPECT_EQ(error.controllerCode, 0x0A);
  EXPECT_EQ(error.doing, "reading MI 0..59 from unit 1 on COM3, 115200 8N1");
  EXPECT_EQ(error.happened, "the controller refused: it is busy (code 0A)");
  EXPECT_EQ(bench.channel.Quality().repeats, 0U);
}

TEST(Exchange, WholeSilenceTakesTheWholeDeadlineAndNoMore) {
  for (const int tries : {1, 3, 5}) {
    Bench bench;
    bench.controller.faultOf = [](const std::string&) { return Fault::NotHeard; };
    bench.channel.SetTimeOut(2000);
    const Instant start = bench.pacer.Now();
    EXPECT_FALSE(bench.channel.StopController(1));
    EXPECT_EQ(bench.channel.LastError().code, LinkErrorCode::Unsure);  // not even SY was answered
    EXPECT_LE(bench.pacer.Now() - start, 3 * (2s + 100ms)) << tries;
    EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
    EXPECT_EQ(bench.channel.LastError().code, LinkErrorCode::NoReply);
  }
}

// A link on which replies take 2 ms does not wait half a second for each that is lost.
TEST(Exchange, LostReplyCostsTheTimeOfThisLink) {
  Bench bench;
  bench.Arm("RO", Fault::NoReply);
  const Instant start = bench.pacer.Now();
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_LE(bench.pacer.Now() - start, 150ms);
  EXPECT_EQ(bench.channel.Quality().repeats, 1U);
}

TEST(Exchange, AnsweredAtOnceItCostsNoTurn) {
  Bench bench;
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.pacer.TurnCount(), 0);
}

TEST(Exchange, StopAndAbortEndAWaitWithin200Milliseconds) {
  for (const bool isAbort : {false, true}) {
    for (const Fault fault : {Fault::NoReply, Fault::Garbage}) {
      Bench bench;
      bench.Arm("CCS", fault, 1000);
      bench.pacer.After(300ms, [&] { isAbort ? bench.channel.AbortComm(true) : bench.pacer.RequestStop(); });
      const Instant start = bench.pacer.Now();
      EXPECT_FALSE(bench.channel.StopController(1));
      EXPECT_EQ(bench.channel.LastError().code, LinkErrorCode::Stopped);
      EXPECT_LE(bench.pacer.Now() - start, 500ms);
      bench.pacer.ClearStop();
      bench.channel.AbortComm(true);  // with nothing under way it stops nothing
      bench.Arm("", Fault::None);
      EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
      EXPECT_TRUE(bench.channel.StopController(1)) << bench.channel.LastError().Text();
    }
  }
}

TEST(Exchange, SecondRequestInTheMiddleOfOneIsRefused) {
  Bench bench;
  bench.Arm("RO", Fault::NoReply);
  bool wasRefused = false;
  bench.pacer.After(20ms, [&] {
    wasRefused = !bench.channel.ReadMI(1, 1, 1) && bench.channel.LastError().code == LinkErrorCode::Busy;
  });
  EXPECT_EQ(bench.channel.ReadMI(9, 1, 1), (std::vector<std::int16_t>{9}));
  EXPECT_TRUE(wasRefused);
}

TEST(Exchange, RestartBetweenDoingAndAnsweringLeavesAWriteUnsure) {
  Bench bench;
  bench.Arm("WO", Fault::Restarted);
  EXPECT_FALSE(bench.channel.WriteMI(0, std::vector<std::int16_t>{7}, 1));
  EXPECT_EQ(bench.channel.LastError().code, LinkErrorCode::Unsure);
  EXPECT_EQ(bench.controller.timesExecuted["WO03000000010007"], 1);
  EXPECT_TRUE(bench.channel.GetVersionInfo(1)) << "in step with the counter that began anew";
}

// The counter has gone half around since the last write; an equal request that is lost must not be taken for that one.
TEST(Exchange, OldEqualRequestIsNotMistakenForTheLostOne) {
  Bench bench;
  EXPECT_TRUE(bench.channel.StopController(1));
  for (int i = 0; i < 40000; ++i) ASSERT_TRUE(bench.channel.ReadMI(0, 1, 1));
  bench.Arm("CCS", Fault::NotHeard);
  EXPECT_TRUE(bench.channel.StopController(1));
  EXPECT_EQ(bench.controller.timesExecuted["CCS"], 2);
}

}  // namespace
}  // namespace kv
