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

TEST(Region, SplitsIntoWhatFitsOneRequest) {
  using ::testing::ElementsAre;
  EXPECT_THAT(SplitRegion({5, 125, MI}), ElementsAre(Region{5, 64, MI}, Region{65, 124, MI}, Region{125, 125, MI}));
  EXPECT_THAT(SplitRegion({INT32_MAX, INT32_MAX, MI}), ElementsAre(Region{INT32_MAX, INT32_MAX, MI}));
  EXPECT_THAT(SplitRegion({0, -1, MI}), ElementsAre());
  EXPECT_THAT(SplitRegion({0, 9, static_cast<OperandTypeCode>(23)}), ElementsAre());
}

}  // namespace
}  // namespace kv::mdlDataTypesView
