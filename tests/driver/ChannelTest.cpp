#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

TEST(Channel, WhatNoControllerCanDoIsNotSent) {
  Bench bench;
  Channel& c = bench.channel;
  const std::string before = bench.trace->Text();
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
  EXPECT_EQ(bench.Error().code, LinkErrorCode::BadArgument);
  EXPECT_FALSE(c.WriteCounterPresets(0, std::vector{FixedPoint::FromInteger(1), FixedPoint::FromInteger(-1)}, 1));
  EXPECT_TRUE(bench.Error().happened.starts_with("value 2 does not fit the operand")) << bench.Error().Text();
  const std::pair<std::string, const char*> commands[] = {
      {"", "the command is empty"},
      {std::string(1101, 'x'), "the command is longer than 1100 characters"},
      {"ID\r", "the command holds a character that no frame can carry"},
  };
  for (const auto& [command, fault] : commands) {
    EXPECT_FALSE(c.SendCommand(command));
    EXPECT_EQ(bench.Error().happened, fault);
    EXPECT_EQ(bench.Error().code, LinkErrorCode::BadArgument);
  }
  EXPECT_EQ(bench.trace->Text(), before);
}

TEST(Channel, CommandRepliesEndWithTheChecksumOfTheirText) {
  Bench bench;
  EXPECT_EQ(bench.channel.SendCommand("CCS")->text, "CCOK20");  // 0x43 + 0x43 + 0x4F + 0x4B = 0x120
  const auto refused = bench.channel.SendCommand("XY");
  ASSERT_TRUE(refused) << "a refusal is a reply";
  EXPECT_TRUE(refused->IsError());
  EXPECT_EQ(refused->status, 1);
}

TEST(Channel, OperandListGoesTheWayThatTheControllerUnderstands) {
  const std::vector<OperandListRequest> records = {{0, 3, 5, 2, 0}};
  for (const bool isCompact : {false, true}) {
    Bench bench(isCompact ? "Q50" : "K450");
    ASSERT_TRUE(bench.channel.WriteMI(5, std::vector<std::int16_t>{5, 6}, 1));
    const auto lists = bench.channel.ReadOperandList(records, 1);
    ASSERT_TRUE(lists) << bench.Error().Text();
    EXPECT_EQ(*lists, (std::vector<OperandListValues>{{5, 6}}));
    EXPECT_EQ(bench.channel.GetDownloadEngine() == nullptr, isCompact);
    EXPECT_EQ(bench.Error().code, isCompact ? LinkErrorCode::NotSupported : LinkErrorCode::None);
    EXPECT_EQ(bench.Error().happened, isCompact ? "this controller understands text commands only" : "");
  }
}

// On a bad line memory is read in smaller pieces; they grow again when the line is good.
TEST(Channel, PiecesOfMemoryGrowAgain) {
  Bench bench;
  const auto pieces = [&bench] {
    const auto before = bench.channel.Quality().exchanges;
    EXPECT_TRUE(bench.channel.ReadMemoryBlock(0x00300000, 2000, 1)) << bench.Error().Text();
    return bench.channel.Quality().exchanges - before;
  };
  const auto usual = pieces();
  bench.plant.UseFaults({"damage:rate=0.001,on=block"});
  for (int i = 0; i < 5; ++i) (void)pieces();
  bench.plant.UseFaults({});
  EXPECT_GT(pieces(), usual);
  for (int i = 0; i < 20; ++i) (void)pieces();
  EXPECT_EQ(pieces(), usual);
}

TEST(Channel, SpeedChangeKeepsTheConnectionAndPortChangeDoesNot) {
  Bench bench;
  const ComParams before = bench.channel.GetComParams();
  EXPECT_EQ(before, (ComParams{"serial:COM3,115200,8N1", 115200, 0}));
  EXPECT_TRUE(bench.channel.OpenLink(0, 57600));
  EXPECT_EQ(bench.channel.GetComParams().baudRate, 57600);
  EXPECT_TRUE(bench.channel.GetVersionInfo(1));
  EXPECT_EQ(bench.plant.connections, 1);
  EXPECT_TRUE(bench.channel.OpenLink(5, 0));
  EXPECT_EQ(bench.channel.GetComParams().link, "serial:COM5,57600,8N1");
  EXPECT_TRUE(bench.channel.SetComParams(before));
  EXPECT_EQ(bench.channel.GetComParams(), before);
  EXPECT_EQ(bench.plant.connections, 3);
  EXPECT_FALSE(bench.channel.SetComParams({"pigeon:7", 0, 0}));
}

TEST(Channel, RawTrafficPassesAndExchangesAreSynchronisedAfterwards) {
  Bench bench;
  SerialPortObject* port = bench.channel.GetSerialPort();
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(port->InBufferSize(), 8192U);
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(port->Input(), "") << "nothing yet, and no wait";
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(port->WaitForInput(1s)) << "what waits is there at once";
  bench.pacer.Sleep(10ms);
  EXPECT_TRUE(port->Input().starts_with("/01CCOK"));
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  bench.pacer.Sleep(10ms);
  port->SetInBufferCount(0);
  const int turns = bench.pacer.TurnCount();
  EXPECT_FALSE(port->WaitForInput(200ms));
  EXPECT_GT(bench.pacer.TurnCount(), turns + 3) << "the window is painted meanwhile";
  EXPECT_EQ(port->Input(), "");
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_TRUE(bench.channel.StopController(1)) << "its reply is told from that of the equal raw frame";
  EXPECT_EQ(bench.plant.controller->MostExecutions(), 4);

  bench.plant.isCut = true;
  EXPECT_FALSE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.channel.GetSerialPort(), nullptr);
}

}  // namespace
}  // namespace kv
