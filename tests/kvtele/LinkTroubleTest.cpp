#include <gtest/gtest.h>

#include "tests/kvtele/CommandFixture.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/FakeDriver.h"

namespace kv::test {
namespace {

// A driver on a link that partners call: two messages come before the controller.
class CalledDriver final : public FakeDriver {
 public:
  using FakeDriver::FakeDriver;
  void SetDriverActive(bool) override {
    OnComMessage("A caller was dropped: caller 1: it does not answer");
    OnComMessage("Connection closed");
  }
};

TEST(DialIn, WhoWasDroppedIsToldThoughTheControllerCame) {
  CommandFixture fixture;
  CallLog log;
  const auto channel = std::make_shared<FakeChannel>();
  channel->version = VersionInfo{.model = "Q50-2-R34"};
  channel->info = Channel::ControllerInfo{};
  fixture.driver = std::make_unique<CalledDriver>(log);
  dynamic_cast<CalledDriver&>(*fixture.driver).channel = channel;
  const Result result = fixture.Run("identify");
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "A caller was dropped: caller 1: it does not answer\n");
}

}  // namespace
}  // namespace kv::test
