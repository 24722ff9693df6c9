#include "dataview/operands/RegionTransfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/FakeChannel.h"

namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;
using Texts = std::vector<std::string>;
using ::testing::HasSubstr;
constexpr std::string_view kAurex = "K220-22-R1";

constexpr Region From5(OperandTypeCode type) {
  return {.from = 5, .to = 6, .type = type};
}

// What each type's values look like is tried with the real driver; here are the replies that no good driver gives.
TEST(ReadRegion, TakesNoReplyOfAnotherLength) {
  const std::tuple<OperandTypeCode, OperandListValues, Texts> rows[] = {
      {MF, {0x00003FC0, 0x00007FC0}, {"1.5", "nan"}},
      {TimerCurrent, {100, 50, 1, 36000000, 0xFFFFFFFB, 0}, {"00:00:00.50", "00:00:00.00"}},
      {CounterValue, {65535, 7, 0, 3, 4, 1}, {"0", "1"}},
  };
  for (const auto& [type, values, texts] : rows) {
    test::FakeChannel channel;
    channel.lists = {values};
    EXPECT_EQ(ReadRegion(channel, kAurex, From5(type)), texts);
    channel.lists->front().pop_back();
    EXPECT_EQ(ReadRegion(channel, kAurex, From5(type)).error().code, LinkErrorCode::Damaged);
    channel.lists = {values, values};
    EXPECT_EQ(ReadRegion(channel, kAurex, From5(type)).error().code, LinkErrorCode::Damaged);
  }
  test::FakeChannel compact;
  compact.words = {{-1}};
  compact.timerWords = {{0x4064, 1}};
  EXPECT_FALSE(ReadRegion(compact, "Q50Net", From5(MI)));
  EXPECT_EQ(ReadRegion(compact, "Q50Net", From5(TimerPreset)), (Texts{"100000", "10"}));
}

TEST(ReadRegion, SaysWhyItFailsAndSendsNothingThatCannotBeAsked) {
  test::FakeChannel channel;
  EXPECT_EQ(ReadRegion(channel, kAurex, From5(MI)).error().happened, "no reply");
  channel.calls.clear();
  EXPECT_EQ(ReadRegion(channel, "Q50", From5(ML)), Texts()) << "the family has no operation for it";
  EXPECT_EQ(ReadRegion(channel, "AurexQ50", From5(DBI)).error().code, LinkErrorCode::NotSupported);
  const Region bad[] = {
      {0, 120, MB},
      {0, 60, MI},
      {0, 30, ML},
      {-1, 0, MB},
      {5, 4, MB},
      {32767, 32768, MB},
      {INT32_MIN, INT32_MAX, MB},
      {0, 0, static_cast<OperandTypeCode>(23)},
  };
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
  channel.error.controllerCode = 3;
  EXPECT_EQ(ReadRegion(channel, kAurex, From5(MI)).error().cure, "choose");
}

TEST(WriteRegion, SendsNothingForATextThatCannotBeConvertedOrATypeThatIsReadOnly) {
  test::FakeChannel channel;
  channel.succeeds = true;
  const std::tuple<OperandTypeCode, std::string_view, std::string> rows[] = {
      {MB, kAurex, "2"},
      {MI, kAurex, "1.5"},
      {MF, kAurex, "x"},
      {CounterPreset, kAurex, ""},
      {TimerPreset, kAurex, "1:2:3:4:5"},
      {TimerPreset, "Q50", "15"},
  };
  for (const auto& [type, model, bad] : rows) {
    const std::string good = type == TimerPreset ? "00:00:01.00" : "1";
    const auto result = WriteRegion(channel, model, From5(type), Texts{good, bad});
    ASSERT_FALSE(result);
    EXPECT_THAT(result.error().happened, AllOf(HasSubstr("\"" + bad + "\" is no value for"), HasSubstr(" 6;")));
  }
  EXPECT_FALSE(WriteRegion(channel, kAurex, From5(MI), Texts{"1"}));
  EXPECT_TRUE(WriteRegion(channel, kAurex, From5(SI), Texts{"x", "y"}));
  EXPECT_TRUE(channel.calls.empty());
}

TEST(Region, SplitsIntoWhatFitsOneRequest) {
  using ::testing::ElementsAre;
  EXPECT_THAT(SplitRegion({5, 125, MI}), ElementsAre(Region{5, 64, MI}, Region{65, 124, MI}, Region{125, 125, MI}));
  EXPECT_THAT(SplitRegion({INT32_MAX, INT32_MAX, MI}), ElementsAre(Region{INT32_MAX, INT32_MAX, MI}));
  EXPECT_THAT(SplitRegion({0, -1, MI}), ElementsAre());
  EXPECT_THAT(SplitRegion({0, 9, static_cast<OperandTypeCode>(23)}), ElementsAre());
}

}  // namespace
}  // namespace kv::mdlDataTypesView
