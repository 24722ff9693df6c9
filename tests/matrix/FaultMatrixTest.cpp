// Every fault on every kind of request: no value but the right one, in time, nothing done twice, and the next exchange
// is a good one again.

#include <gtest/gtest.h>

#include <chrono>

#include "Requests.h"
#include "tests/support/Recorded.h"

namespace kv::matrix {
namespace {

using namespace std::chrono_literals;

// What a fault that happens once may leave of a request.
enum class Once {
  Passes,   // every request gets over it
  Reads,    // reads get over it; what must not be done twice may stay unsure
  Fails,    // a refusal, or a line that is gone: none does
  Unknown,  // either
};

struct Fault {
  const char* rule;
  Once once;
  Duration lasts = {};  // what has to pass before the line is good again
  bool isDeaf = false;  // the line has to be opened again
};

// clang-format off
constexpr Fault kFaults[] = {
    {"noreply",                 Once::Passes},
    {"late:ms=40",              Once::Passes},
    {"late:ms=700",             Once::Passes},
    {"late:ms=4000",            Once::Unknown, 5s},  // later than any deadline
    {"double",                  Once::Passes},
    {"dribble:ms=1",            Once::Unknown, 1min},
    {"dribble:ms=30",           Once::Unknown, 1h},
    {"dribble:ms=400",          Once::Unknown, 12h},  // two requests of 4096 bytes, each tried in ever smaller pieces
    {"cut:after=0",             Once::Passes},
    {"cut:after=7",             Once::Passes},
    {"cut:after=20",            Once::Passes},
    {"wrongunit",               Once::Passes},
    {"echo",                    Once::Passes},
    {"garbage:bytes=60",        Once::Passes},
    {"garbage:bytes=3000",      Once::Passes},
    {"garbage",                 Once::Unknown, {}, true},
    {"busy",                    Once::Fails},
    {"refuse:code=04",          Once::Fails},
    {"lie",                     Once::Passes},
    {"reset",                   Once::Unknown, 300ms},  // silent for 200 ms: the tries may be over by then
    {"lost",                    Once::Reads},
    {"lost:at=9",               Once::Reads},
    {"lost:dir=in",             Once::Reads},
    {"lost:away=700",           Once::Reads,   1s},
    {"lost:at=9,away=60000",    Once::Fails,   61s},
    {"damage",                  Once::Passes},
    {"damage:chars=3",          Once::Passes},
    {"damage:rate=0.02",        Once::Passes},
    {"damage:dir=in",           Once::Passes},
    {"damage:chars=3,dir=in",   Once::Passes},
};
// clang-format on

std::string Rule(const Fault& fault, const std::string& selectors) {
  const std::string rule = fault.rule;
  return rule + (rule.find(':') == std::string::npos ? ":" : ",") + selectors;
}

class Cell {
 public:
  Cell(Fixture& fixture, const Request& request, const Fault& fault)
      : mFixture(fixture), mRequest(request), mFault(fault) {}

  Attempt RunUnder(const std::string& selectors) {
    EXPECT_TRUE(mFixture.simulated->UseFaults({Rule(mFault, selectors)}));
    const Instant start = mFixture.pacer.Now();
    const Attempt attempt = RunJudged(mFixture, mRequest);
    mTook = mFixture.pacer.Now() - start;
    return attempt;
  }
  // What it came to, after which time, with the counts of the link. What damage makes of a tag is never the same.
  void Note(const Attempt& attempt) {
    if (std::string(mFault.rule).starts_with("damage")) return;
    const std::string error = attempt.isDone ? "done" : LastError();
    const LinkQuality counts = mFixture.Link() != nullptr ? mFixture.Link()->Quality() : LinkQuality();
    test::ExpectAsRecorded([&] {
      std::string line = std::string("--> ") + mFault.rule + "\n" + error + "\n" + std::to_string(mTook.count());
      for (const auto count : {counts.exchanges, counts.repeats, counts.errors, counts.bytesSent, counts.bytesReceived})
        line += " " + std::to_string(count);
      return line + "\n";
    });
  }

  // When the fault is over, the first exchange may fail and no other.
  void Recover() {
    EXPECT_TRUE(mFixture.simulated->UseFaults({}));
    mFixture.pacer.Sleep(mFault.lasts);
    if (mFault.isDeaf) mFixture.Reopen();
    for (int round = 1; round <= 3; ++round) {
      const Attempt attempt = RunJudged(mFixture, mRequest);
      EXPECT_TRUE(attempt.isDone || round == 1) << "exchange " << round << " after it: " << LastError();
    }
  }

  std::string LastError() {
    Channel* link = mFixture.Link();
    return link != nullptr ? link->LastError().Text() : mFixture.driver.LastError().Text();
  }

 private:
  Fixture& mFixture;
  const Request& mRequest;
  const Fault& mFault;
  Duration mTook{};
};

class FaultMatrix : public testing::TestWithParam<Request> {};

TEST_P(FaultMatrix, OneFault) {
  const Request& request = GetParam();
  Fixture fixture(request.model);
  ASSERT_TRUE(request.run(fixture).isDone);
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(std::string(request.name) + ": " + fault.rule);
    Cell cell(fixture, request, fault);
    const Attempt attempt = cell.RunUnder("nth=1,on=" + std::string(request.on));
    const bool mustPass = fault.once == Once::Passes || (fault.once == Once::Reads && request.isRead);
    EXPECT_TRUE(attempt.isDone || !mustPass) << cell.LastError();
    EXPECT_FALSE(attempt.isDone && fault.once == Once::Fails);
    cell.Note(attempt);
    cell.Recover();
  }
}

// The fault stays while the request is under way: on its own kind of frame only, then on every frame, those with
// which the driver finds out what became of it among them.
TEST_P(FaultMatrix, FaultThatStays) {
  const Request& request = GetParam();
  Fixture fixture(request.model);
  ASSERT_TRUE(request.run(fixture).isDone);
  for (const std::string& selectors : {"on=" + std::string(request.on), std::string("p=1"), std::string("p=0.5")}) {
    for (const Fault& fault : kFaults) {
      SCOPED_TRACE(std::string(request.name) + ": " + Rule(fault, selectors));
      Cell cell(fixture, request, fault);
      for (int round = 0; round < 2; ++round) (void)cell.RunUnder(selectors);
      cell.Recover();
    }
  }
}

// Fails the 1st, the 2nd, the 3rd ... frame of whatever kind, starting with a link that was never used.
TEST_P(FaultMatrix, FaultAtEachFrameOfANewLink) {
  const Request& request = GetParam();
  for (const char* rule : {"noreply", "damage", "damage:dir=in", "reset", "lost:at=9", "lost:dir=in"}) {
    const Fault fault{rule, Once::Unknown, 300ms};
    Fixture fixture(request.model);
    for (int frame = 1; frame <= 10; ++frame) {
      SCOPED_TRACE(std::string(request.name) + ": " + rule + " at frame " + std::to_string(frame));
      fixture.Reopen();
      Cell cell(fixture, request, fault);
      (void)cell.RunUnder("nth=" + std::to_string(frame));
      cell.Recover();
    }
  }
}

// The reply is lost, and then the power fails: SY knows nothing any more, at whatever number the counter stood.
TEST(PowerFailure, BehindALostReplyDoesNothingTwice) {
  for (const int requests : {1, 65530}) {
    for (const bool isFirst : {false, true}) {
      SCOPED_TRACE(std::to_string(requests) + (isFirst ? ", first write" : ""));
      Fixture fixture("Q50");
      Channel& link = *fixture.Link();
      for (int i = 0; i < requests; ++i) ASSERT_TRUE(link.ReadMI(0, 1, 1));
      if (!isFirst) {
        ASSERT_TRUE(link.WriteMI(0, std::vector<std::int16_t>{1}, 1));
      }
      ASSERT_TRUE(fixture.simulated->UseFaults({"noreply:on=WO,nth=1", "reset:on=SY,nth=1"}));
      fixture.controller->ForgetCounts();
      EXPECT_FALSE(link.WriteMI(0, std::vector<std::int16_t>{2}, 1));
      EXPECT_EQ(link.LastError().code, LinkErrorCode::Unsure);
      EXPECT_EQ(fixture.controller->MostExecutions(), 1);
    }
  }
}

std::string NameOf(const testing::TestParamInfo<Request>& info) {
  std::string name = info.param.name;
  std::erase_if(name, [](char c) { return c == ' ' || c == ','; });
  return name;
}

INSTANTIATE_TEST_SUITE_P(Requests, FaultMatrix, testing::ValuesIn(AllRequests().begin(), AllRequests().end()), NameOf);

}  // namespace
}  // namespace kv::matrix
