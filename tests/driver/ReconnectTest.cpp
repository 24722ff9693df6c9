#include <gtest/gtest.h>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
const std::vector<std::int16_t> kSeven = {7};
constexpr const char* kWrite = "WO03000000010007";

TEST(Reconnect, ReadIsRepeatedOnTheNewConnection) {
  for (const char* request : {"RO", "ID", "block 257"}) {
    for (const Fault fault : {Fault::LostBefore, Fault::LostAfter}) {
      SCOPED_TRACE(request);
      Bench bench;
      bench.Arm(request, fault);
      EXPECT_TRUE(bench.channel.ReadMI(3, 1, 1) && bench.channel.GetVersionInfo(1) &&
                  bench.channel.ReadMemoryBlock(0, 8, 1));
      EXPECT_EQ(bench.controller.connections, 2);
      const std::vector<std::string> expected = {"Connected to COM3, 115200 8N1, unit 1", "Connection lost: it was cut",
                                                 "Connected again to the fake line"};
      EXPECT_EQ(bench.messages, expected);
    }
  }
}

TEST(Reconnect, WriteIsNotReplayedAndItsFateIsReported) {
  Bench done;
  done.Arm("WO", Fault::LostAfter);
  EXPECT_TRUE(done.channel.WriteMI(0, kSeven, 1)) << "it was done, and SY told so";
  EXPECT_EQ(done.controller.timesExecuted[kWrite], 1);

  Bench notDone;
  notDone.Arm("WO", Fault::LostBefore);
  EXPECT_FALSE(notDone.channel.WriteMI(0, kSeven, 1));
  EXPECT_EQ(notDone.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(notDone.controller.timesExecuted[kWrite], 0);
  EXPECT_TRUE(notDone.channel.WriteMI(0, kSeven, 1)) << "the next one goes through";

  for (const char* request : {"block 66", "LN"}) {
    Bench other;
    other.Arm(request, Fault::LostBefore);
    DownloadEngine* engine = other.channel.GetDownloadEngine();
    ASSERT_NE(engine, nullptr);
    engine->SetMessage({.opCode = 66, .param1 = 0, .dataLength = 0, .param3 = 0, .param4 = 0});
    const bool isBlock = std::string_view(request).starts_with("block");
    EXPECT_FALSE(isBlock ? engine->Send() : other.channel.SendCommand("LN41").has_value());
    EXPECT_EQ(other.Error().code, isBlock ? LinkErrorCode::Unsure : LinkErrorCode::LinkLost);
    EXPECT_TRUE(other.controller.timesExecuted.empty());
  }
}

TEST(Reconnect, QuietLossIsNoticedBeforeAWriteGoesOut) {
  Bench bench;
  bench.controller.CutLink();
  EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1));
  EXPECT_EQ(bench.controller.timesExecuted[kWrite], 1);
  EXPECT_EQ(bench.controller.connections, 2);
}

TEST(Reconnect, GoesOnWithTheSameControllerOnly) {
  const struct {
    const char* what;
    void (*swap)(FakeController& controller);
  } rows[] = {
      {"another serial number", [](FakeController& c) { c.serial = 99; }},
      {"another model", [](FakeController& c) { c.model = "K330"; }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Bench bench;
    row.swap(bench.controller);
    bench.controller.CutLink();
    EXPECT_FALSE(bench.channel.WriteMI(0, kSeven, 1));
    EXPECT_EQ(bench.Error().code, LinkErrorCode::OtherController);
    EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
    EXPECT_EQ(bench.Error().code, LinkErrorCode::OtherController);
    EXPECT_FALSE(bench.channel.IsOpen());
    EXPECT_TRUE(bench.controller.timesExecuted.empty());
    EXPECT_FALSE(bench.channel.Open());
    bench.channel.Close();  // another controller is meant now
    EXPECT_TRUE(bench.channel.Open());
    EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1));
  }
}

TEST(Reconnect, ControllerThatIsTooBusyToSayWhoItIsIsNoOther) {
  Bench bench;
  bench.controller.CutLink();
  bench.Arm("IN", Fault::Refused);
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Busy);
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

TEST(Reconnect, ModelMayChangeThroughTheBootLoader) {
  Bench bench;
  ASSERT_TRUE(bench.channel.SendCommand("CCB"));
  bench.controller.model = "BOOT";
  bench.controller.CutLink();
  const auto version = bench.channel.GetVersionInfo(1);
  ASSERT_TRUE(version) << bench.Error().Text();
  EXPECT_EQ(version->model, "BOOT");
}

TEST(Reconnect, TriesWithGrowingPausesWithinTheDeadline) {
  Bench bench;
  bench.controller.CutLink();
  bench.controller.isReachable = false;
  const Instant start = bench.pacer.Now();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.Error().happened, "the connection was lost: nobody is there");
  EXPECT_LE(bench.pacer.Now() - start, 3 * 1200ms);
  bench.controller.isReachable = true;
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << "with the next request";

  bench.controller.CutLink();
  bench.controller.isReachable = false;
  bench.pacer.After(900ms, [&] { bench.controller.isReachable = true; });
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << "within the request";
}

TEST(Reconnect, StopEndsIt) {
  Bench bench;
  bench.controller.CutLink();
  bench.controller.isReachable = false;
  bench.pacer.After(500ms, [&] { bench.pacer.RequestStop(); });
  const Instant start = bench.pacer.Now();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Stopped);
  EXPECT_LE(bench.pacer.Now() - start, 700ms);
}

TEST(Reconnect, NotWhenTheSettingsForbidIt) {
  LinkSettings settings = SerialSettings();
  settings.reconnects = false;
  Bench bench("K220-22-R1", settings);
  bench.controller.CutLink();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(bench.controller.connections, 1);
  EXPECT_TRUE(bench.channel.Open());
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

TEST(Reconnect, PasswordIsGivenAgain) {
  Bench bench;
  bench.controller.password = "secret";
  EXPECT_FALSE(bench.channel.StopController(1));
  EXPECT_EQ(bench.Error().controllerCode, 0x07);
  EXPECT_FALSE(bench.channel.GiveAccess("wrong", 1));
  EXPECT_EQ(bench.Error().controllerCode, 0x08);
  EXPECT_TRUE(bench.channel.GiveAccess("secret", 1));
  EXPECT_TRUE(bench.channel.StopController(1));

  bench.controller.CutLink();
  EXPECT_TRUE(bench.channel.StopController(1)) << "after a reconnect";
  bench.controller.PowerUp();
  EXPECT_TRUE(bench.channel.WriteMI(0, kSeven, 1))
      << "after a restart that the line did not show: " << bench.Error().Text();
}

}  // namespace
}  // namespace kv
