#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
const std::vector<std::int16_t> kSeven = {7};

TEST(Reconnect, ReadIsRepeatedOnTheNewConnectionAndTheUserIsTold) {
  for (const char* fault : {"lost:on=RO,nth=1", "lost:dir=in,on=RO,nth=1"}) {
    Bench bench;
    bench.plant.UseFaults({fault});
    EXPECT_TRUE(bench.channel.ReadMI(3, 1, 1));
    EXPECT_EQ(bench.plant.connections, 2);
    const std::vector<std::string> expected = {"Connected to COM3, 115200 8N1, unit 1", "Connection lost: it was cut",
                                               "Connected again to the cable"};
    EXPECT_EQ(bench.messages, expected);
  }
}

TEST(Reconnect, WriteIsNotReplayedAndItsFateIsReported) {
  Bench done;
  done.plant.UseFaults({"lost:on=WO,nth=1"});
  EXPECT_TRUE(done.channel.WriteMI(0, kSeven, 1)) << "it was done, and SY told so";

  Bench notDone;
  notDone.plant.UseFaults({"lost:dir=in,on=WO,nth=1"});
  EXPECT_FALSE(notDone.channel.WriteMI(0, kSeven, 1));
  EXPECT_EQ(notDone.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(notDone.plant.controller->MostExecutions(), 0);
  EXPECT_TRUE(notDone.channel.WriteMI(0, kSeven, 1)) << "the next one goes through";
}

TEST(Reconnect, ControllerThatIsTooBusyToSayWhoItIsIsNoOther) {
  Bench bench;
  bench.plant.isCut = true;
  bench.plant.UseFaults({"busy:on=IN,nth=1"});
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Busy);
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

TEST(Reconnect, ModelMayChangeThroughTheBootLoader) {
  Bench bench;
  const auto before = bench.channel.GetVersionInfo(1);
  ASSERT_TRUE(bench.channel.SendCommand("CCB"));
  bench.pacer.Sleep(1s);
  bench.plant.isCut = true;
  const auto version = bench.channel.GetVersionInfo(1);
  ASSERT_TRUE(version) << bench.Error().Text();
  EXPECT_NE(version->model, before->model);
}

TEST(Reconnect, TriesWithGrowingPausesWithinTheDeadline) {
  Bench bench;
  bench.plant.isCut = true;
  bench.plant.isReachable = false;
  const Instant start = bench.pacer.Now();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.Error().happened, "the connection was lost: nobody is there");
  EXPECT_LE(bench.pacer.Now() - start, 3 * 1200ms);

  bench.pacer.After(500ms, [&] { bench.pacer.RequestStop(); });
  const Instant again = bench.pacer.Now();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Stopped);
  EXPECT_LE(bench.pacer.Now() - again, 700ms);
  bench.pacer.ClearStop();

  bench.pacer.After(900ms, [&] { bench.plant.isReachable = true; });
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << "within the request";
}

TEST(Reconnect, NotWhenTheSettingsForbidIt) {
  LinkSettings settings = SerialSettings();
  settings.reconnects = false;
  Bench bench("K220", settings);
  bench.plant.isCut = true;
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.plant.connections, 1);
  EXPECT_TRUE(bench.channel.Open());
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

TEST(Reconnect, PasswordIsGivenAgain) {
  Bench bench("K220", SerialSettings(), "secret");
  EXPECT_FALSE(bench.channel.StopController(1));
  EXPECT_EQ(bench.Error().controllerCode, 0x07);
  EXPECT_FALSE(bench.channel.GiveAccess("wrong", 1));
  EXPECT_EQ(bench.Error().controllerCode, 0x08);
  EXPECT_TRUE(bench.channel.GiveAccess("secret", 1));
  EXPECT_TRUE(bench.channel.StopController(1));

  bench.plant.isCut = true;
  EXPECT_TRUE(bench.channel.StopController(1)) << "after a reconnect";
  bench.plant.UseFaults({"reset:on=RO,nth=1"});
  (void)bench.channel.ReadMI(0, 1, 1);
  bench.pacer.Sleep(300ms);
  EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1)) << "after a restart: " << bench.Error().Text();
}

}  // namespace
}  // namespace kv
