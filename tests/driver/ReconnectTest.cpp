#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "Bench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
const std::vector<std::int16_t> kSeven = {7};

sim::SimulatorOptions Like(std::optional<std::uint32_t> serialNumber, Duration restartTime = 200ms) {
  sim::SimulatorOptions options;
  options.serialNumber = serialNumber;
  options.restartTime = restartTime;
  return options;
}

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

// What is no read is never sent again over a new connection: SY tells what became of it, but for block messages.
TEST(Reconnect, WhatIsNoReadIsNotSentAgainAndItsFateIsReported) {
  using enum LinkErrorCode;
  const std::tuple<std::string, std::function<bool(Channel&)>, LinkErrorCode, LinkErrorCode> rows[] = {
      {"WO", [](Channel& c) { return c.WriteMI(0, kSeven, 1); }, None, LinkLost},
      {"WD", [](Channel& c) { return c.SendCommand("WDR00100000020102").has_value(); }, None, LinkLost},
      {"block", BeginDownload, Unsure, Unsure},
  };
  for (const auto& [on, request, codeWhenDone, codeWhenNot] : rows) {
    for (const bool isDone : {true, false}) {
      SCOPED_TRACE(on + (isDone ? ", reply lost" : ", request lost"));
      Bench bench;
      bench.plant.UseFaults({(isDone ? "lost:nth=1,on=" : "lost:dir=in,nth=1,on=") + on});
      const LinkErrorCode code = isDone ? codeWhenDone : codeWhenNot;
      EXPECT_EQ(request(bench.channel), code == None);
      EXPECT_EQ(bench.Error().code, code) << bench.Error().Text();
      EXPECT_EQ(bench.Error().isNotExecuted, code == LinkLost);
      const char* told = code == Unsure ? "could not be found out" : code == LinkLost ? "has not executed" : "";
      EXPECT_NE(bench.Error().happened.find(told), std::string::npos) << bench.Error().Text();
      const auto& controller = *bench.plant.controller;
      EXPECT_EQ(controller.MostExecutions() + controller.MostBlockExecutions(), isDone ? 1 : 0);
      EXPECT_TRUE(request(bench.channel)) << "the next one goes through: " << bench.Error().Text();
    }
  }
}

TEST(Reconnect, ControllerThatIsTooBusyToSayWhoItIsIsNoOther) {
  Bench bench;
  bench.plant.isCut = true;
  bench.plant.UseFaults({"busy:on=IN,nth=1"});
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Busy);
  EXPECT_EQ(bench.Error().happened, "the controller does not say who it is");
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

// What takes its time is waited for, instead of asking what became of it; and who was reset, and nobody else, may come
// back as another model.
TEST(Reconnect, EachCommandHasItsPatienceAndAResetAloneMayChangeTheModel) {
  const std::tuple<const char*, std::vector<std::string>, bool> rows[] = {
      {"K220", {"CCS"}, false},
      {"K220", {"CCS", "CCR"}, false},
      {"K220", {"CCE"}, true},
      {"K220", {"CCB"}, true},
      {"K220", {"WDR00100000020102", "ED"}, true},
      {"K670", {"PV000A"}, false},
      {"Q51", {"CCS", "DE"}, false},
      {"Q51", {"CCB", "FS05"}, false},
      {"Q51", {"CCB", "OSS"}, false},
      {"Q51", {"CCB", "OSE0"}, false},
  };
  for (const auto& [model, commands, resets] : rows) {
    SCOPED_TRACE(commands.back());
    Bench bench(model);
    const auto serialNumber = bench.channel.GetControllerInfo(1)->serialNumber;
    for (const std::string& command : commands) {
      EXPECT_TRUE(bench.channel.GetVersionInfo(1)) << "it is met";
      const std::size_t before = bench.trace->Text().size();
      bench.plant.shape.latency = &command == &commands.back() ? 300ms : 0ms;
      EXPECT_FALSE(bench.channel.SendCommand(command)->IsError()) << command;
      EXPECT_EQ(bench.trace->Text().find("/01SY", before), std::string::npos) << bench.trace->Text();
      bench.pacer.Sleep(1s);
    }
    bench.plant.Connect("K330", "", Like(serialNumber));
    bench.plant.isCut = true;
    EXPECT_EQ(bench.channel.GetVersionInfo(1).has_value(), resets) << bench.Error().Text();
    EXPECT_EQ(bench.Error().code, resets ? LinkErrorCode::None : LinkErrorCode::OtherController);
  }
}

// A cable is moved while nobody closes the link, or the box behind a device server.
TEST(Reconnect, AnotherControllerOnTheSameConnectionIsNeverTakenForTheOneBefore) {
  const std::tuple<const char*, std::function<void(Bench&)>> gaps[] = {
      {"a request ended in silence",
       [](Bench& bench) {
         bench.plant.isSilent = true;
         EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
         EXPECT_EQ(bench.Error().code, LinkErrorCode::NoReply);
       }},
      {"a block message ended in silence",
       [](Bench& bench) {
         bench.plant.isSilent = true;
         EXPECT_FALSE(bench.channel.ReadMemoryBlock(0x00200000, 10, 1));
       }},
      {"a request ended in damage",
       [](Bench& bench) {
         bench.plant.UseFaults({"damage"});
         EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
       }},
      {"a request was stopped while nobody answered",
       [](Bench& bench) {
         bench.plant.isSilent = true;
         bench.pacer.After(40ms, [&] { bench.pacer.RequestStop(); });
         EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
         bench.pacer.ClearStop();
       }},
      {"nobody asked for a while", [](Bench& bench) { bench.pacer.Sleep(4s); }},
      {"raw frames passed", [](Bench& bench) { EXPECT_TRUE(bench.channel.GetSerialPort()->Output("/01CCS3A\r")); }},
  };
  const std::tuple<const char*, std::function<bool(Channel&)>> requests[] = {
      {"read", [](Channel& c) { return c.ReadMI(0, 1, 1).has_value(); }},
      {"write", [](Channel& c) { return c.WriteMI(0, kSeven, 1); }},
      {"stop", [](Channel& c) { return c.StopController(1); }},
      {"memory", [](Channel& c) { return c.ReadMemoryBlock(0x00200000, 10, 1).has_value(); }},
      {"raw frames", [](Channel& c) { return c.GetSerialPort() != nullptr; }},
  };
  for (const auto& [what, gap] : gaps) {
    for (const auto& [name, request] : requests) {
      for (const char* model : {"K220", "K450-45"}) {
        SCOPED_TRACE(std::string(what) + ", " + name + ", " + model);
        Bench bench("K220", SerialSettings(), "secret");
        EXPECT_TRUE(bench.channel.GiveAccess("secret", 1));
        const auto before = bench.channel.GetControllerInfo(1);
        gap(bench);
        bench.plant.isSilent = false;
        bench.plant.Connect(model, "", Like(4711));
        EXPECT_FALSE(request(bench.channel));
        EXPECT_EQ(bench.Error().code, LinkErrorCode::OtherController) << bench.Error().Text();
        EXPECT_NE(bench.Error().happened.find("serial number 4711 instead of K220"), std::string::npos)
            << bench.Error().happened;
        EXPECT_NE(bench.Error().happened.find(std::to_string(before->serialNumber)), std::string::npos);
        EXPECT_EQ(bench.plant.controller->MostExecutions(), 0) << "nothing but questions has reached it";
        EXPECT_FALSE(bench.channel.Open()) << "until the link is closed";
        EXPECT_EQ(bench.messages.back(), "Connection closed: another controller answered");
      }
    }
  }
}

// Nobody noticed that the cable was moved: it was quick, and nothing was asked meanwhile.
TEST(Reconnect, AnotherControllerGivesItselfAwayByWhatItAnswers) {
  const std::tuple<const char*, const char*, std::function<bool(Channel&)>> cases[] = {
      {"its information", "", [](Channel& c) { return c.GetControllerInfo(1).has_value(); }},
      {"its identification", "", [](Channel& c) { return c.GetVersionInfo(1).has_value(); }},
      {"an older counter", "", [](Channel& c) { return c.ReadMI(0, 1, 1).has_value(); }},
      {"another power-up", "noreply:on=WO,nth=1", [](Channel& c) { return c.WriteMI(0, kSeven, 1); }},
      {"a lost reply", "noreply:on=CC,nth=1", [](Channel& c) { return c.StopController(1); }},
  };
  for (const auto& [what, fault, request] : cases) {
    SCOPED_TRACE(what);
    Bench bench;
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
    bench.plant.Connect("K330", "", Like(4711));
    if (*fault != 0) bench.plant.UseFaults({fault});
    EXPECT_FALSE(request(bench.channel));
    EXPECT_EQ(bench.Error().code, LinkErrorCode::OtherController) << bench.Error().Text();
    EXPECT_LE(bench.plant.controller->MostExecutions(), 1);
  }
}

// What is asked right after a reset is asked again until the controller listens, and so is what became of the reset.
TEST(Reconnect, AControllerThatRestartsIsWaitedFor) {
  const std::tuple<const char*, std::vector<std::string>, std::function<bool(Bench&)>> resets[] = {
      {"reset", {}, [](Bench& b) { return b.channel.ResetController(1); }},
      {"reset, reply lost", {"noreply:on=CC,nth=1"}, [](Bench& b) { return b.channel.ResetController(1); }},
      {"boot loader", {}, [](Bench& b) { return b.channel.SendCommand("CCB").has_value(); }},
      {"raw reset",
       {},
       [](Bench& b) {
         SerialPortObject* port = b.channel.GetSerialPort();
         const bool isSent = port->Output("/01CCE2C\r");
         b.pacer.Sleep(10ms);
         return isSent && !port->Input().empty();
       }},
  };
  for (const Duration restart : {Duration(200ms), Duration(2s), Duration(4500ms)}) {
    for (const auto& [what, faults, reset] : resets) {
      SCOPED_TRACE(std::string(what) + ", " + std::to_string(restart.count()) + " us");
      Bench bench("K220", SerialSettings(), "", Like({}, restart));
      bench.plant.UseFaults(faults);
      EXPECT_TRUE(reset(bench)) << bench.Error().Text();
      const bool isInBootLoader = std::string_view(what) == "boot loader";
      const bool isDone = isInBootLoader ? bench.channel.GetVersionInfo(1)->model == "BOOT"
                                         : bench.channel.ReadMemoryBlock(0x00200000, 10, 1).has_value();
      EXPECT_TRUE(isDone) << bench.Error().Text();
    }
  }
  Bench dead;
  EXPECT_TRUE(dead.channel.ResetController(1));
  dead.plant.isSilent = true;
  const Instant start = dead.pacer.Now();
  EXPECT_FALSE(dead.channel.ReadMI(0, 1, 1));
  EXPECT_LE(dead.pacer.Now() - start, 8s + 500ms) << "and not for ever";
}

// Who refuses to reset does not: nothing is waited for.
TEST(Reconnect, ARefusedResetEarnsNoPatience) {
  const std::pair<const char*, std::function<bool(Bench&)>> refused[] = {
      {"CCE", [](Bench& b) { return b.channel.ResetController(1); }},
      {"raw ED without a load",
       [](Bench& b) {
         SerialPortObject* port = b.channel.GetSerialPort();
         const bool isSent = port->Output("/01EDEA\r");
         b.pacer.Sleep(10ms);
         return !isSent || port->Input().find("EDERROR09") == std::string::npos;
       }},
  };
  for (const auto& [what, reset] : refused) {
    SCOPED_TRACE(what);
    Bench bench("K220", SerialSettings(), what == refused[0].first ? "secret" : "");
    EXPECT_FALSE(reset(bench));
    bench.plant.isSilent = true;
    const Instant start = bench.pacer.Now();
    EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
    EXPECT_LE(bench.pacer.Now() - start, 3s + 500ms);
  }
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

  Bench dropped;  // it comes back each time, and is lost again
  dropped.plant.UseFaults({"lost:on=RO"});
  EXPECT_FALSE(dropped.channel.ReadMI(0, 1, 1));
  EXPECT_LE(dropped.plant.connections, 6) << "the pauses grow";

  bench.pacer.After(500ms, [&] { bench.pacer.RequestStop(); });
  const Instant again = bench.pacer.Now();
  EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(bench.Error().code, LinkErrorCode::Stopped);
  EXPECT_LE(bench.pacer.Now() - again, 700ms);
  bench.pacer.ClearStop();

  bench.pacer.After(900ms, [&] { bench.plant.isReachable = true; });
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1)) << "within the request";
}

TEST(Reconnect, ALinkThatMayNotBeReopenedStaysLostWithAReason) {
  LinkSettings settings = SerialSettings();
  settings.reconnects = false;
  Bench bench("K220", settings);
  bench.plant.loss = {};  // a port that knows none
  bench.plant.isCut = true;
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(bench.channel.ReadMI(0, 1, 1));
    EXPECT_EQ(bench.Error().code, LinkErrorCode::LinkLost);
    EXPECT_NE(bench.Error().happened.find("the other side has gone"), std::string::npos) << bench.Error().Text();
    EXPECT_NE(bench.Error().cure, "");
  }
  EXPECT_EQ(bench.plant.connections, 1);
  EXPECT_TRUE(bench.channel.Open());
  EXPECT_TRUE(bench.channel.ReadMI(0, 1, 1));
}

}  // namespace
}  // namespace kv
