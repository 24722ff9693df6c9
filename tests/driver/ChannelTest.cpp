#include <gtest/gtest.h>

#include "Fixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

TEST(Channel, WhatNoControllerCanDoIsNotSent) {
  Fixture fixture;
  Channel& c = fixture.channel;
  const std::string before = fixture.trace->Text();
  const std::vector<std::int16_t> words(61);
  const std::vector<std::uint8_t> two = {2};
  const OperandListRequest noType{0, 0, 0, 1, 0};
  const std::vector<OperandListRequest> many(17, OperandListRequest{0, 3, 0, 1, 0});
  const auto number = [](std::int64_t whole) { return std::vector<FixedPoint>{FixedPoint::FromInteger(whole)}; };
  const bool results[] = {
      c.ReadMI(-1, 1, 1).has_value(),
      c.ReadMI(0, 0, 1).has_value(),
      c.ReadMI(0, 61, 1).has_value(),
      c.ReadMB(0, 121, 1).has_value(),
      c.WriteMI(0, words, 1),
      c.WriteMI(0, {}, 1),
      c.WriteMB(0, two, 1),
      c.WriteDW(0, number(-1), 1),
      c.WriteDW(0, number(0x100000000), 1),
      c.WriteCounterPresets(0, number(65536), 1),
      c.WriteTimerPresets(0, number(36000000), 1),
      c.ReadOperandList(std::span(&noType, 1), 1).has_value(),
      c.ReadOperandList({}, 1).has_value(),
      c.ReadOperandList(many, 1).has_value(),
      c.ReadMemoryBlock(0, 0, 1).has_value(),
      c.ReadMemoryBlock(0, 4097, 1).has_value(),
      c.ReadMemoryBlock(0xFFFFFFFF, 2, 1).has_value(),
      c.GiveAccess("ninechars", 1),
  };
  for (const bool result : results) EXPECT_FALSE(result) << &result - results;
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::BadArgument);
  EXPECT_FALSE(c.WriteCounterPresets(0, std::vector{FixedPoint::FromInteger(1), FixedPoint::FromInteger(-1)}, 1));
  EXPECT_TRUE(fixture.Error().happened.starts_with("value 2 does not fit the operand")) << fixture.Error().Text();
  const std::pair<std::string, const char*> commands[] = {
      {"", "the command is empty"},
      {std::string(1101, 'x'), "the command is longer than 1100 characters"},
      {"ID\r", "the command holds a character that no frame can carry"},
  };
  for (const auto& [command, fault] : commands) {
    EXPECT_FALSE(c.SendCommand(command));
    EXPECT_EQ(fixture.Error().happened, fault);
    EXPECT_EQ(fixture.Error().code, LinkErrorCode::BadArgument);
  }
  EXPECT_EQ(fixture.trace->Text(), before);
  (void)c.ReadMemoryBlock(0xFFFFFFFE, 2, 1);
  EXPECT_NE(fixture.Error().code, LinkErrorCode::BadArgument) << "its last byte is the last that there is";
  EXPECT_TRUE(c.GetVersionInfo(1) && fixture.Error().code == LinkErrorCode::None) << "what went well has no error";
}

TEST(Channel, OperandListGoesTheWayThatTheControllerUnderstands) {
  const std::vector<OperandListRequest> records = {{0, 3, 5, 2, 0}};
  const std::vector<OperandListRequest> withText = {{0, 3, 5, 2, 0}, {0, 0x51, 0, 1, 0}};  // one that no block holds
  for (const bool isCompact : {false, true}) {
    Fixture fixture(isCompact ? "Q50" : "K450");
    ASSERT_TRUE(fixture.channel.WriteMI(5, std::vector<std::int16_t>{5, 6}, 1));
    const auto lists = fixture.channel.ReadOperandList(records, 1);
    ASSERT_TRUE(lists) << fixture.Error().Text();
    EXPECT_EQ(*lists, (std::vector<OperandListValues>{{5, 6}}));
    EXPECT_TRUE(fixture.channel.ReadOperandList(withText, 1)) << fixture.Error().Text();
    EXPECT_EQ(fixture.channel.GetDownloadEngine() == nullptr, isCompact);
    EXPECT_EQ(fixture.Error().code, isCompact ? LinkErrorCode::NotSupported : LinkErrorCode::None);
    EXPECT_EQ(fixture.Error().happened, isCompact ? "this controller understands text commands only" : "");
  }
}

// On a bad line memory is read in smaller pieces; they grow again when the line is good.
TEST(Channel, PiecesOfMemoryGrowAgain) {
  Fixture fixture;
  const auto pieces = [&fixture] {
    const auto before = fixture.channel.Quality().exchanges;
    EXPECT_TRUE(fixture.channel.ReadMemoryBlock(0x00300000, 2000, 1)) << fixture.Error().Text();
    return fixture.channel.Quality().exchanges - before;
  };
  const auto usual = pieces();
  fixture.plant.UseFaults({"damage:rate=0.001,on=block"});
  for (int i = 0; i < 5; ++i) (void)pieces();
  fixture.plant.UseFaults({});
  EXPECT_GT(pieces(), usual);
  for (int i = 0; i < 20; ++i) (void)pieces();
  EXPECT_EQ(pieces(), usual);
}

TEST(Channel, SpeedChangeKeepsTheConnectionAndPortChangeDoesNot) {
  Fixture fixture;
  const ComParams before = fixture.channel.GetComParams();
  EXPECT_EQ(before, (ComParams{"serial:COM3,115200,8N1", 115200, 0}));
  EXPECT_TRUE(fixture.channel.OpenLink(0, 57600));
  EXPECT_EQ(fixture.channel.GetComParams().baudRate, 57600);
  EXPECT_TRUE(fixture.channel.GetVersionInfo(1));
  EXPECT_EQ(fixture.plant.connections, 1);
  EXPECT_TRUE(fixture.channel.OpenLink(5, 0));
  EXPECT_EQ(fixture.channel.GetComParams().link, "serial:COM5,57600,8N1");
  EXPECT_TRUE(fixture.channel.SetComParams({"serial:COM5,9600,8N1", 0, 0}));
  EXPECT_EQ(fixture.channel.GetComParams().baudRate, 9600) << "that of the text, where none is given";
  EXPECT_TRUE(fixture.channel.SetComParams(before));
  EXPECT_EQ(fixture.channel.GetComParams(), before);
  EXPECT_EQ(fixture.plant.connections, 3);
  EXPECT_FALSE(fixture.channel.SetComParams({"pigeon:7", 0, 0}));
}

TEST(Channel, RawTrafficPassesAndExchangesAreSynchronisedAfterwards) {
  Fixture fixture;
  SerialPortObject* port = fixture.channel.GetSerialPort();
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(port->InBufferSize(), 8192U);
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(port->Input(), "") << "nothing yet, and no wait";
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(port->WaitForInput(1s)) << "what waits is there at once";
  fixture.pacer.Sleep(10ms);
  const std::string reply = port->Input();
  EXPECT_TRUE(reply.starts_with("/01CCOK"));
  const std::string request = "/01CCS3A\r";
  EXPECT_TRUE(port->IsReplyTo(request, reply));
  for (const std::string& other : {std::string(), request, reply.substr(0, reply.size() - 1) + "x", reply + reply,
                                   "x" + reply, reply.substr(1), std::string("/01\r"), std::string("\r")}) {
    EXPECT_FALSE(port->IsReplyTo(request, other)) << other;
  }
  EXPECT_FALSE(port->IsReplyTo("/01CCR39\r", reply));
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  fixture.pacer.Sleep(10ms);
  port->SetInBufferCount(0);
  const int turns = fixture.pacer.TurnCount();
  EXPECT_FALSE(port->WaitForInput(200ms));
  EXPECT_GT(fixture.pacer.TurnCount(), turns + 3) << "the window is painted meanwhile";
  EXPECT_EQ(port->Input(), "");
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_TRUE(fixture.channel.StopController(1)) << "its reply is told from that of the equal raw frame";
  EXPECT_EQ(fixture.plant.controller->MostExecutions(), 4);

  fixture.plant.isCut = true;
  EXPECT_FALSE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(fixture.channel.GetSerialPort(), nullptr);
}

}  // namespace
}  // namespace kv
