#include "dataview/operands/RegionTransfer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dataview/operands/OsSupport.h"
#include "tests/support/FakeChannel.h"

// clang-format off: the tables are laid out by hand
namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;
using Texts = std::vector<std::string>;
using Calls = std::vector<std::string>;
constexpr std::string_view kAurex = "K220-22-R1";

Region From5(OperandTypeCode type, std::size_t count = 2) {
  return {.from = 5, .to = 4 + static_cast<std::int32_t>(count), .type = type};
}

TEST(ReadRegion, AsksForOneListOnTheAurexFamilyAndPicksByType) {
  struct Row {
    OperandTypeCode type;
    std::string record;
    OperandListValues values;
    Texts texts;
  };
  const OperandListValues timers = {100, 50, 1, 36000000, 0xFFFFFFFB, 0};
  const OperandListValues counters = {65535, 7, 0, 3, 4, 1};
  const std::vector<Row> rows = {
      {MI, "0,3,5,2,0", {0x8000, 7}, {"-32768", "7"}}, {SB, "0,2,5,2,0", {0, 1}, {"0", "1"}},
      {SI, "0,4,5,2,0", {0xFFFF, 0}, {"-1", "0"}}, {SL, "0,6,5,2,0", {0xFFFFFFFF, 1}, {"-1", "1"}},
      {MF, "0,7,5,2,0", {0x00003FC0, 0x00007FC0}, {"1.5", "nan"}}, {Input, "0,9,5,2,0", {1, 1}, {"1", "1"}},
      {Output, "0,10,5,2,0", {0, 0}, {"0", "0"}}, {TimerPreset, "0,11,5,2,0", timers, {"00:00:01.00", "99:59:59.99"}},
      {TimerCurrent, "0,11,5,2,0", timers, {"00:00:00.50", "00:00:00.00"}},
      {TimerValue, "0,11,5,2,0", timers, {"1", "0"}}, {CounterValue, "0,12,5,2,0", counters, {"0", "1"}},
      {SDW, "0,36,5,2,0", {0x80000000, 1}, {"2147483648", "1"}}};
  for (const Row& row : rows) {
    test::FakeChannel channel;
    channel.unit = 9;
    channel.lists = {row.values};
    EXPECT_EQ(ReadRegion(channel, kAurex, From5(row.type)), row.texts) << row.record;
    EXPECT_EQ(channel.calls, Calls{"ReadOperandList @9: " + row.record});
    channel.lists->front().pop_back();
    EXPECT_EQ(ReadRegion(channel, kAurex, From5(row.type)).error().code, LinkErrorCode::Damaged) << row.record;
  }
}

TEST(ReadRegion, UsesOneOperationATypeOnTheCompactFamily) {
  const std::vector<std::tuple<OperandTypeCode, std::string, Texts>> rows = {
      {MB, "ReadMB", {"1", "0"}}, {SB, "ReadSB", {"1", "0"}}, {Input, "ReadInputs", {"1", "0"}},
      {Output, "ReadOutputs", {"1", "0"}}, {TimerValue, "ReadTimerBits", {"1", "0"}}, {MI, "ReadMI", {"-1", "7"}},
      {SI, "ReadSI", {"-1", "7"}}, {DBI, "ReadDBI", {"-1", "7"}}, {TimerPreset, "ReadTimerPresets", {"100000", "10"}},
      {TimerCurrent, "ReadTimerCurrents", {"100000", "10"}}};
  for (const auto& [type, name, texts] : rows) {
    test::FakeChannel channel;
    channel.bits = {{1, 0}};
    channel.words = {{-1, 7}};
    channel.timerWords = {{0x4064, 1}};
    EXPECT_EQ(ReadRegion(channel, "Q50Net", From5(type)), texts) << name;
    EXPECT_EQ(channel.calls, Calls{name + " 5 2 @1"});
    EXPECT_FALSE(ReadRegion(channel, "Q50Net", From5(type, 3))) << name;  // two values for three operands
  }
  for (const OperandTypeCode type :
       {MF, ML, DW, SL, SDW, CounterPreset, CounterCurrent, CounterValue, XB, XI, XL, XDW}) {
    test::FakeChannel channel;
    EXPECT_EQ(ReadRegion(channel, "Q50", From5(type)), Texts());
    EXPECT_TRUE(channel.calls.empty());
  }
}

TEST(ReadRegion, SaysWhyItFailsAndSendsNothingThatCannotBeAsked) {
  test::FakeChannel channel;
  EXPECT_EQ(ReadRegion(channel, kAurex, From5(MI)).error().happened, "no reply");
  channel.calls.clear();
  EXPECT_EQ(ReadRegion(channel, "AurexQ50", From5(DBI)).error().code, LinkErrorCode::NotSupported);
  const std::vector<Region> bad = {
      {0, 120, MB}, {0, 60, MI}, {0, 30, ML}, {-1, 0, MB}, {5, 4, MB}, {32767, 32768, MB},
      {-2147483647 - 1, 2147483647, MB}, {0, 0, static_cast<OperandTypeCode>(23)}};
  for (const Region& region : bad) {
    EXPECT_EQ(ReadRegion(channel, kAurex, region).error().code, LinkErrorCode::BadArgument) << region.from;
    EXPECT_EQ(WriteRegion(channel, kAurex, region, Texts{"0"}).error().code, LinkErrorCode::BadArgument);
  }
  EXPECT_TRUE(channel.calls.empty());
}

// A region may end one address too far, and only the controller says so: all that can be done is to remove it.
TEST(ReadRegion, ARegionPastTheEndIsToBeRemoved) {
  test::FakeChannel channel;
  channel.error = {.code = LinkErrorCode::Refused, .controllerCode = 4, .doing = "", .happened = "", .cure = "choose"};
  const std::string cure = "remove the region, and add it anew with addresses from 0 to 2047";
  EXPECT_EQ(ReadRegion(channel, kAurex, From5(MI)).error().cure, cure);
  EXPECT_EQ(WriteRegion(channel, kAurex, From5(MI), Texts{"1", "2"}).error().cure, cure);
  EXPECT_NE(ReadRegion(channel, "Q50", From5(MI)).error().cure, "choose");
  channel.error.controllerCode = 3;
  EXPECT_EQ(ReadRegion(channel, kAurex, From5(MI)).error().cure, "choose");
}

TEST(WriteRegion, SendsNothingForATextThatCannotBeConvertedOrATypeThatIsReadOnly) {
  test::FakeChannel channel;
  channel.succeeds = true;
  const std::vector<std::tuple<OperandTypeCode, std::string, std::string>> rows = {
      {MB, kAurex.data(), "2"}, {MI, kAurex.data(), "1.5"}, {MF, kAurex.data(), "x"},
      {CounterPreset, kAurex.data(), ""}, {TimerPreset, kAurex.data(), "1:2:3:4:5"}, {TimerPreset, "Q50", "15"}};
  for (const auto& [type, model, bad] : rows) {
    const std::string good = type == TimerPreset ? "00:00:01.00" : "1";
    const auto result = WriteRegion(channel, model, From5(type), Texts{good, bad});
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().happened.find("\"" + bad + "\" is no value for"), std::string::npos);
    EXPECT_NE(result.error().happened.find(" 6;"), std::string::npos);
  }
  EXPECT_FALSE(WriteRegion(channel, kAurex, From5(MI), Texts{"1"}));
  for (const OperandTypeCode type : {SB, SI, SL, SDW, Input, Output, TimerValue, CounterValue}) {
    EXPECT_TRUE(WriteRegion(channel, kAurex, From5(type), Texts{"x", "y"}));
  }
  EXPECT_TRUE(channel.calls.empty());
}

TEST(OsSupport, HoldsRegionsToTheLimitsOfAnOlderOs) {
  struct Row {
    std::string model, os;
    Region region;
    bool supported;
  };
  const std::string large = "K670-67-T40 / K390-29-T40";
  const std::vector<Row> rows = {
      {large, "a;b;c;O/S 1.1;", {0, 8192, MB}, true}, {large, "a;b;c;O/S 1.0;", {0, 4096, MB}, true},
      {large, "a;b;c;O/S 1.0;", {0, 4097, MB}, false}, {large, "4.60", {0, 4097, MB}, false},
      {"K230", "a;b;c;O/S 2.0;", {0, 0, XB}, true}, {"K230", "3.00", {0, 1, XB}, false},
      {"K220-22-R1", "3.00", {0, 1, XB}, true}, {"K220-22-R1", "2.99", {0, 1, XB}, false},
      {"K220-22-R1", "2.99", {0, 0, XB}, true}, {"K220-22-R1", "", {0, 1024, MI}, true},
      {"Q50", "1.00", {0, 256, MB}, true}};
  for (const Row& row : rows) {
    EXPECT_EQ(AreRegionsSupported(row.model, row.os, std::vector{row.region}), row.supported) << row.model << row.os;
  }
}

}  // namespace
}  // namespace kv::mdlDataTypesView
