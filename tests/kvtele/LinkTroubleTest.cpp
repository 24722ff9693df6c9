#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/SettingsFile.h"
#include "KvCmDrv1/ports/ModemPort.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "simulator/SimulatedModem.h"
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

TEST(Watch, DialsALostCallAgainAsOftenAsItMay) {
  const std::tuple<const char*, const char*, int, const char*> rows[] = {
      {"lost:on=RO,nth=3", "", 0, "Dialling again in 10 s (1 of 3).\nConnected to "},
      {"lost:on=RO,nth=3,away=900000", "", 7, "0,123 does not answer; no more calls after 3 in a row"},
      {"lost:on=RO,every=3", " --redials 5", 7, "broke; no more calls after 5 in a row"},
      {"lost:on=RO,nth=3", " --redials 0", 7, "--redials lets the watch dial again by itself"},
  };
  for (const auto& [fault, more, exit, message] : rows) {
    SCOPED_TRACE(message);
    CommandFixture fixture;
    sim::SimulatorOptions options;
    options.model = "Q50";
    options.faults = {fault};
    const auto controller = sim::SimulatedController::Create(options).value();
    fixture.makePort = [&](const LinkSettings& settings, Pacer& pacer, ListeningSocket*) {
      auto modem = std::make_shared<sim::SimulatedModem>(controller->NewLine(), sim::ModemOptions{});
      return std::make_unique<ModemPort>(std::make_unique<SimulatedPort>(modem, "COM3", pacer), settings.modem, pacer);
    };
    fixture.home.Put("plant.axt", "Version 100\r\nQ50\r\n2\tMI\t0\t1\t\t\t\t\t\r\n\r\n");
    LinkSettings link;
    link.transport = Transport::Modem;
    link.serialPort = "COM3";
    link.modem.number = "0,123";
    EXPECT_TRUE(SaveSettings(fixture.home.Path() / "Sessions" / "Default", link));
    const Result result = fixture.Run(std::string("--model Q50 watch @plant.axt --for 600 --every 1000") + more);
    EXPECT_EQ(result.exit, exit) << result.err;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(result.trace, HasSubstr("--> ATDT0,123"));
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
