#include <gtest/gtest.h>

#include <functional>
#include <span>

#include "Fixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

// And on a link on which replies take 2 ms, one that is lost does not cost half a second.
TEST(Exchange, RefusalIsNeverRepeatedAndALostReplyAtOnce) {
  Fixture fixture;
  fixture.plant.UseFaults({"busy:on=RO,nth=1"});
  EXPECT_FALSE(fixture.channel.ReadMI(0, 60, 1));
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::Busy);
  EXPECT_TRUE(
      fixture.Error().Text().starts_with("Reading MI 0..59 from unit 1 on COM3, 115200 8N1 failed: the controller "
                                         "refused: it is busy (code 0A)"));
  EXPECT_EQ(fixture.channel.Quality().repeats, 0U);
  fixture.plant.UseFaults({"noreply:on=RO,nth=1"});
  const Instant start = fixture.pacer.Now();
  EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_LE(fixture.pacer.Now() - start, 150ms);
  EXPECT_EQ(fixture.channel.Quality().repeats, 1U);
}

TEST(Exchange, OfABlockMessageAStatusAbove128IsARefusal) {
  Exchange exchange(1, Instant{}, Instant{});
  for (const auto& [status, code] : {std::pair(5, 0), {127, 0}, {128, 0}, {129, 1}, {255, 127}}) {
    exchange.status = status;
    EXPECT_EQ(exchange.Refusal().value_or(0), code);
    EXPECT_EQ(exchange.Refusal().has_value(), code != 0);
  }
}

TEST(Exchange, ABlockMessageThatNeverEndedSwallowsNoOther) {
  for (const char* fault : {"cut:after=2,on=block", "cut:after=10,on=block", "cut:after=40,on=block"}) {
    Fixture fixture;
    fixture.plant.UseFaults({fault});
    EXPECT_FALSE(fixture.channel.ReadMemoryBlock(0x00200000, 100, 1));
    fixture.plant.UseFaults({});
    const Instant start = fixture.pacer.Now();
    EXPECT_TRUE(fixture.channel.ReadMI(0, 60, 1));
    EXPECT_TRUE(fixture.channel.ReadMemoryBlock(0x00200000, 100, 1));
    EXPECT_LE(fixture.pacer.Now() - start, 100ms);
  }
}

using Requests = std::vector<std::pair<const char*, std::function<bool(Channel&)>>>;

// One of each kind that the exchange goes about in another way, on a link that was never used before.
Requests EachKind(Fixture& fixture) {
  fixture.channel.Close();
  EXPECT_TRUE(fixture.channel.Open());
  const OperandListRequest list{.driverTypeCode = 3, .start = 0, .count = 60};
  return {{"tagged read", [](Channel& c) { return c.ReadMI(0, 60, 1).has_value(); }},
          {"write", [](Channel& c) { return c.WriteMI(0, std::vector<std::int16_t>{7}, 1); }},
          {"settled read", [](Channel& c) { return c.SendCommand("DRS000020").has_value(); }},
          {"settled once", [](Channel& c) { return c.StopController(1); }},
          {"list", [list](Channel& c) { return c.ReadOperandList(std::span(&list, 1), 1).has_value(); }},
          {"memory", [](Channel& c) { return c.ReadMemoryBlock(0x00200000, 100, 1).has_value(); }}};
}

TEST(Exchange, StrayBytesAndPausesFailNothing) {
  const struct {
    const char* what;
    LineShape shape;
    Duration most;  // for one request that nobody answers
  } lines[] = {
      {"a transmitter switches on", {.noise = "\xFF", .noiseLead = 12ms}, 100ms},
      {"with a byte that could begin a frame", {.noise = "/", .noiseLead = 40ms}, 100ms},
      {"with one that could begin a block message", {.noise = "\xB4", .noiseLead = 20ms}, 100ms},
      {"with the start of one", {.noise = "\xB4\x4B\x01", .noiseLead = 150ms}, 1s},
      {"with an end", {.noise = "\r", .noiseLead = 15ms}, 100ms},
      {"for long", {.noise = std::string(60, '\x55'), .noiseLead = 60ms}, 1s},
      {"each reply pauses", {.latency = 30ms, .pauseAt = 10, .pause = 400ms}, 2s},
      {"each reply pauses behind its head", {.latency = 30ms, .pauseAt = 40, .pause = 150ms}, 1s},
  };
  for (const auto& line : lines) {
    for (const char* model : {"K220", "Q50"}) {
      Fixture fixture(model);
      const Requests requests = EachKind(fixture);
      fixture.plant.shape = line.shape;
      EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1)) << line.what << ", handshake: " << fixture.Error().Text();
      for (int round = 0; round < 3; ++round) {
        for (const auto& [name, request] : requests) {
          SCOPED_TRACE(std::string(line.what) + ", " + model + ": " + name);
          const Instant start = fixture.pacer.Now();
          EXPECT_TRUE(request(fixture.channel)) << fixture.Error().Text();
          EXPECT_LE(fixture.pacer.Now() - start, line.most);
        }
      }
      EXPECT_EQ(fixture.channel.Quality().errors, 0U);
    }
  }
}

// What is advised must follow from what was seen.
TEST(Exchange, ADisturbedLineIsToldWhereDamageWasSeen) {
  const struct {
    const char* fault;
    LineShape shape;
    LinkErrorCode code;
    const char* told;
    bool isDisturbed;
  } cases[] = {
      {"noreply:on=RO", {}, LinkErrorCode::NoReply, "no reply after 3 tries (1.32 s)", false},
      {"garbage:bytes=3,on=RO", {.pauseAt = 3, .pause = 5s}, LinkErrorCode::NoReply, "only a few stray bytes", false},
      {"wrongunit:on=RO", {}, LinkErrorCode::NoReply, "only messages that answer something else", false},
      {"cut:after=7,on=RO", {}, LinkErrorCode::Damaged, "stopped in the middle", false},
      {"damage:on=RO", {}, LinkErrorCode::Damaged, "no reply arrived whole", true},
  };
  for (const auto& each : cases) {
    Fixture fixture("Q50");
    fixture.plant.UseFaults({each.fault});
    fixture.plant.shape = each.shape;
    EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1)) << each.fault;
    EXPECT_EQ(fixture.Error().code, each.code) << each.fault;
    const std::string text = fixture.Error().Text();
    EXPECT_NE(text.find(each.told), std::string::npos) << text;
    EXPECT_EQ(text.find("disturbed line") != std::string::npos, each.isDisturbed) << text;
    EXPECT_EQ(text.find("lower speed") != std::string::npos, each.isDisturbed) << text;
  }
}

TEST(Exchange, AnsweredAtOnceItCostsNoTurn) {
  Fixture fixture;
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(fixture.pacer.TurnCount(), 0);
}

TEST(Exchange, StopAndAbortEndAWaitWithin200Milliseconds) {
  for (const bool isAbort : {false, true}) {
    for (const char* fault : {"noreply:on=CC", "garbage:on=CC"}) {
      Fixture fixture;
      fixture.plant.UseFaults({fault});
      fixture.channel.SetTimeOut(20000);
      fixture.pacer.After(300ms, [&] { isAbort ? fixture.channel.AbortComm(true) : fixture.pacer.RequestStop(); });
      const Instant start = fixture.pacer.Now();
      EXPECT_FALSE(fixture.channel.SendCommand("CCS") && fixture.channel.SendCommand("CCR"));
      EXPECT_EQ(fixture.Error().code, LinkErrorCode::Stopped);
      EXPECT_EQ(fixture.Error().happened, "stopped on request");
      EXPECT_LE(fixture.pacer.Now() - start, 500ms);
      fixture.pacer.ClearStop();
      fixture.channel.AbortComm(true);  // with nothing under way it stops nothing
      fixture.plant.UseFaults({});
      fixture.channel.Close();
      EXPECT_TRUE(fixture.channel.Open());
      EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1)) << fixture.Error().Text();
    }
  }
}

}  // namespace
}  // namespace kv
