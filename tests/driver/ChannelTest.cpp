#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

std::string Last(const Bench& bench) {
  const std::string& text = bench.controller.executed.back();
  return text.substr(0, 2) + text.substr(6, text.size() - 14);  // without tag and check
}

TEST(Channel, EachTypedWriteSendsItsTypeAndDigits) {
  Bench bench;
  Channel& c = bench.channel;
  const std::vector<std::uint8_t> bits = {1, 0};
  const std::vector<std::int16_t> words = {-2};
  const std::vector<std::int32_t> longs = {-2};
  const std::vector<FixedPoint> numbers = {FixedPoint::FromInteger(0xFFFF)};
  const std::vector<FixedPoint> largest = {FixedPoint::FromInteger(0xFFFFFFFF)};
  const std::vector<std::uint32_t> floats = {0x00003F80};
  const struct {
    bool isDone;
    std::string sent;
  } rows[] = {
      {c.WriteMB(7, bits, 1), Last(bench)},
      {c.WriteXB(7, bits, 1), Last(bench)},
      {c.WriteSB(501, bits, 1), Last(bench)},
      {c.WriteMI(7, words, 1), Last(bench)},
      {c.WriteDBI(7, words, 1), Last(bench)},
      {c.WriteXI(7, words, 1), Last(bench)},
      {c.WriteML(7, longs, 1), Last(bench)},
      {c.WriteXL(7, longs, 1), Last(bench)},
      {c.WriteDW(7, largest, 1), Last(bench)},
      {c.WriteXDW(7, largest, 1), Last(bench)},
      {c.WriteCounterPresets(7, numbers, 1), Last(bench)},
      {c.WriteCounterCurrents(7, numbers, 1), Last(bench)},
      {c.WriteTimerPresets(7, numbers, 1), Last(bench)},
      {c.WriteTimerCurrents(7, numbers, 1), Last(bench)},
      {c.WriteMF(7, floats, 1), Last(bench)},
  };
  const char* expected[] = {
      "WO01000700020100",     "WO40000700020100",     "WO0201F500020100",     "WO0300070001FFFE",
      "WO5000070001FFFE",     "WO4100070001FFFE",     "WO0500070001FFFFFFFE", "WO4200070001FFFFFFFE",
      "WO1000070001FFFFFFFF", "WO4300070001FFFFFFFF", "WO56000700010000FFFF", "WO57000700010000FFFF",
      "WO51000700010000FFFF", "WO52000700010000FFFF", "WO070007000100003F80",
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_TRUE(rows[i].isDone) << i;
    EXPECT_EQ(rows[i].sent, expected[i]);
  }
}

TEST(Channel, WhatNoControllerCanDoIsNotSent) {
  Bench bench;
  Channel& c = bench.channel;
  const std::size_t before = bench.controller.executed.size();
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
      c.SendCommand("").has_value(),
      c.SendCommand("ID\r").has_value(),
  };
  for (const bool result : results) EXPECT_FALSE(result) << &result - results;
  EXPECT_EQ(bench.Error().code, LinkErrorCode::BadArgument);
  EXPECT_EQ(bench.controller.executed.size(), before);
}

TEST(Channel, CommandRepliesEndWithTheChecksumOfTheirText) {
  Bench bench;
  const auto reply = bench.channel.SendCommand("CCS");
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->text, "CCOK20");  // 0x43 + 0x43 + 0x4F + 0x4B = 0x120
  EXPECT_EQ(reply->Data(), "OK");
  const auto refused = bench.channel.SendCommand("XY");
  ASSERT_TRUE(refused) << "a refusal is a reply";
  EXPECT_TRUE(refused->IsError());
  EXPECT_EQ(refused->status, 1);
}

TEST(Channel, OperandListGoesTheWayThatTheControllerUnderstands) {
  const std::vector<OperandListRequest> records = {{0, 3, 5, 2, 0}};
  for (const bool isCompact : {false, true}) {
    Bench bench(isCompact ? "Q50-2-R34" : "K450-45");
    bench.controller.listPayload = [] { return std::string("\x05\0\x06\0", 4); };
    const auto lists = bench.channel.ReadOperandList(records, 1);
    ASSERT_TRUE(lists) << bench.Error().Text();
    EXPECT_EQ(*lists, (std::vector<OperandListValues>{{5, 6}}));
    EXPECT_EQ(bench.controller.executed.back().starts_with("block 256"), !isCompact);
    EXPECT_EQ(bench.channel.GetDownloadEngine() == nullptr, isCompact);
    EXPECT_EQ(bench.Error().code, isCompact ? LinkErrorCode::NotSupported : LinkErrorCode::None);
  }
}

// Damage that grows with the length of a reply: the whole block arrives none the less, in smaller pieces, and the
// pieces grow again when the line is good.
TEST(Channel, MemoryArrivesInSmallerPiecesWhileTheLineIsBad) {
  for (const char* model : {"Q50-2-R34", "K450-45"}) {
    Bench bench(model);
    bool isBad = true;
    std::size_t pieces = 0;
    bench.controller.memoryXor = 0x5A;
    bench.controller.faultOf = [&](const std::string& text) {
      const bool isText = text.starts_with("RM");
      if (!isText && !text.starts_with("block 257")) return Fault::None;
      ++pieces;
      const int length = isText ? std::stoi(text.substr(14, 4), nullptr, 16) : std::stoi(text.substr(10));
      return isBad && length > 64 ? Fault::Damaged : Fault::None;
    };
    const auto isRight = [&] {
      const auto bytes = bench.channel.ReadMemoryBlock(0x100, 600, 1);
      if (!bytes) return false;
      for (std::size_t i = 0; i < bytes->size(); ++i) {
        if ((*bytes)[i] != static_cast<std::uint8_t>((0x100 + i) ^ 0x5A)) return false;
      }
      return bytes->size() == 600;
    };
    EXPECT_TRUE(isRight()) << bench.Error().Text();
    EXPECT_GE(pieces, 600U / 64);
    isBad = false;
    for (int i = 0; i < 10; ++i) EXPECT_TRUE(isRight());
    pieces = 0;
    EXPECT_TRUE(isRight());
    EXPECT_LE(pieces, 2U);
  }
}

TEST(Channel, SpeedChangeKeepsTheConnectionAndPortChangeDoesNot) {
  Bench bench;
  const ComParams before = bench.channel.GetComParams();
  EXPECT_EQ(before, (ComParams{"serial:COM3,115200,8N1", 115200, 0}));
  EXPECT_TRUE(bench.channel.OpenLink(0, 57600));
  EXPECT_EQ(bench.channel.GetComParams().baudRate, 57600);
  EXPECT_TRUE(bench.channel.GetVersionInfo(1));
  EXPECT_EQ(bench.controller.connections, 1);
  EXPECT_TRUE(bench.channel.OpenLink(5, 0));
  EXPECT_EQ(bench.channel.GetComParams().link, "serial:COM5,57600,8N1");
  EXPECT_TRUE(bench.channel.SetComParams(before));
  EXPECT_EQ(bench.channel.GetComParams(), before);
  EXPECT_EQ(bench.controller.connections, 3);
  EXPECT_FALSE(bench.channel.SetComParams({"pigeon:7", 0, 0}));
  EXPECT_TRUE(bench.channel.GetVersionInfo(1));
}

TEST(Channel, RawTrafficPassesAndExchangesAreInStepAfterwards) {
  Bench bench;
  SerialPortObject* port = bench.channel.GetSerialPort();
  ASSERT_NE(port, nullptr);
  EXPECT_EQ(port->InBufferSize(), 8192U);
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(port->Input(), "") << "nothing yet, and no wait";
  bench.pacer.Sleep(10ms);
  EXPECT_TRUE(port->Input().starts_with("/01CCOK"));
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  bench.pacer.Sleep(10ms);
  port->SetInBufferCount(0);
  EXPECT_EQ(port->Input(), "");
  EXPECT_TRUE(port->Output("/01CCS3A\r"));
  EXPECT_TRUE(bench.channel.StopController(1)) << "its reply is told from that of the equal raw frame";
  EXPECT_EQ(bench.controller.timesExecuted["CCS"], 4);

  bench.controller.CutLink();
  EXPECT_FALSE(port->Output("/01CCS3A\r"));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.channel.GetSerialPort(), nullptr);
}

}  // namespace
}  // namespace kv
