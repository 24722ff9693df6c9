#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandFixture.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/FakeDriver.h"
#include "tests/support/FileRights.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

TEST(Password, ComesFromTheEnvironmentOrAFileOfItsOwner) {
  CommandFixture fixture;
  fixture.options.password = "12~4";
  GiveRights(fixture.home.Put("right", "12~4\n"), Rights::Owners);
  GiveRights(fixture.home.Put("wrong", "0000"), Rights::Owners);
  GiveRights(fixture.home.Put("open", "12~4"), Rights::GroupReads);
  const struct {
    const char* environment;
    const char* arguments;
    int exit;
    const char* told;
  } rows[] = {
      {"0000", "--password-file @right", 0, ""},
      {"12~4", "--password-file @wrong", 4, "The password of --password-file is wrong here."},
      {"123456789", "", 2, "KVTELE_PASSWORD: a password has 1 to 8 plain characters"},
      {"", "--password-file @open", 6, "may be read or changed by others than its owner"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments);
    fixture.password = Secret(row.environment);
    const Result result = fixture.On("Q50", std::string("write MI 7 5 --user anna ") + row.arguments);
    EXPECT_EQ(result.exit, row.exit);
    EXPECT_THAT(result.err, HasSubstr(row.told));
    for (const char* secret : {"12~4", "0000", "123456789"}) EXPECT_EQ(result.err.find(secret), std::string::npos);
  }
}

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
