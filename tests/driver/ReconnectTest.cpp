#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "Fixture.h"

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
      Fixture fixture;
      fixture.plant.UseFaults({(isDone ? "lost:nth=1,on=" : "lost:dir=in,nth=1,on=") + on});
      const LinkErrorCode code = isDone ? codeWhenDone : codeWhenNot;
      EXPECT_EQ(request(fixture.channel), code == None);
      EXPECT_EQ(fixture.Error().code, code) << fixture.Error().Text();
      EXPECT_EQ(fixture.Error().isNotExecuted, code == LinkLost);
      const char* told = code == Unsure ? "could not be found out" : code == LinkLost ? "has not executed" : "";
      EXPECT_NE(fixture.Error().happened.find(told), std::string::npos) << fixture.Error().Text();
      const auto& controller = *fixture.plant.controller;
      EXPECT_EQ(controller.MostExecutions() + controller.MostBlockExecutions(), isDone ? 1 : 0);
      EXPECT_TRUE(request(fixture.channel)) << "the next one goes through: " << fixture.Error().Text();
    }
  }
}

TEST(Reconnect, ControllerThatIsTooBusyToSayWhoItIsIsNoOther) {
  Fixture fixture;
  fixture.plant.isCut = true;
  fixture.plant.UseFaults({"busy:on=IN,nth=1"});
  EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::Busy);
  EXPECT_EQ(fixture.Error().happened, "the controller does not say who it is");
  EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1));
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
    Fixture fixture(model);
    const auto serialNumber = fixture.channel.GetControllerInfo(1)->serialNumber;
    for (const std::string& command : commands) {
      EXPECT_TRUE(fixture.channel.GetVersionInfo(1)) << "it is met";
      const std::size_t before = fixture.trace->Text().size();
      fixture.plant.shape.latency = &command == &commands.back() ? 300ms : 0ms;
      EXPECT_FALSE(fixture.channel.SendCommand(command)->IsError()) << command;
      EXPECT_EQ(fixture.trace->Text().find("/01SY", before), std::string::npos) << fixture.trace->Text();
      fixture.pacer.Sleep(1s);
    }
    fixture.plant.Connect("K330", "", Like(serialNumber));
    fixture.plant.isCut = true;
    EXPECT_EQ(fixture.channel.GetVersionInfo(1).has_value(), resets) << fixture.Error().Text();
    EXPECT_EQ(fixture.Error().code, resets ? LinkErrorCode::None : LinkErrorCode::OtherController);
  }
}

// A cable is moved while nobody closes the link, or the box behind a device server.
TEST(Reconnect, AnotherControllerOnTheSameConnectionIsNeverTakenForTheOneBefore) {
  const std::tuple<const char*, std::function<void(Fixture&)>> gaps[] = {
      {"a request ended in silence",
       [](Fixture& fixture) {
         fixture.plant.isSilent = true;
         EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
         EXPECT_EQ(fixture.Error().code, LinkErrorCode::NoReply);
       }},
      {"a block message ended in silence",
       [](Fixture& fixture) {
         fixture.plant.isSilent = true;
         EXPECT_FALSE(fixture.channel.ReadMemoryBlock(0x00200000, 10, 1));
       }},
      {"a request ended in damage",
       [](Fixture& fixture) {
         fixture.plant.UseFaults({"damage"});
         EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
       }},
      {"a request was stopped while nobody answered",
       [](Fixture& fixture) {
         fixture.plant.isSilent = true;
         fixture.pacer.After(40ms, [&] { fixture.pacer.RequestStop(); });
         EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
         fixture.pacer.ClearStop();
       }},
      {"nobody asked for a while", [](Fixture& fixture) { fixture.pacer.Sleep(4s); }},
      {"raw frames passed",
       [](Fixture& fixture) { EXPECT_TRUE(fixture.channel.GetSerialPort()->Output("/01CCS3A\r")); }},
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
        Fixture fixture("K220", SerialSettings(), "secret");
        EXPECT_TRUE(fixture.channel.GiveAccess("secret", 1));
        const auto before = fixture.channel.GetControllerInfo(1);
        gap(fixture);
        fixture.plant.isSilent = false;
        fixture.plant.Connect(model, "", Like(4711));
        EXPECT_FALSE(request(fixture.channel));
        EXPECT_EQ(fixture.Error().code, LinkErrorCode::OtherController) << fixture.Error().Text();
        EXPECT_NE(fixture.Error().happened.find("serial number 4711 instead of K220"), std::string::npos)
            << fixture.Error().happened;
        EXPECT_NE(fixture.Error().happened.find(std::to_string(before->serialNumber)), std::string::npos);
        EXPECT_EQ(fixture.plant.controller->MostExecutions(), 0) << "nothing but questions has reached it";
        EXPECT_FALSE(fixture.channel.IsOpen());
        EXPECT_FALSE(fixture.channel.Open()) << "until the link is closed";
        EXPECT_EQ(fixture.messages.back(), "Connection closed: another controller answered");
      }
    }
  }
}

// A download that finds its boot loader gone has to be told that its power failed, not that it is somebody else.
TEST(Reconnect, AControllerWhosePowerFailsInItsBootLoaderIsStillTheSame) {
  Fixture fixture;
  EXPECT_TRUE(fixture.channel.SendCommand("CCB"));
  EXPECT_EQ(fixture.channel.GetVersionInfo(1)->model, "BOOT");
  fixture.pacer.Sleep(10s);
  fixture.plant.UseFaults({"reset:on=IN,nth=1"});
  EXPECT_TRUE(fixture.channel.GetControllerInfo(1)) << fixture.Error().Text();
  EXPECT_EQ(fixture.channel.GetVersionInfo(1)->model, "K220-22-R1");
}

// Who refuses to reset does not: nothing is waited for.
TEST(Reconnect, ARefusedResetEarnsNoPatience) {
  const std::pair<const char*, std::function<bool(Fixture&)>> refused[] = {
      {"CCE", [](Fixture& b) { return b.channel.ResetController(1); }},
      {"raw ED without a load",
       [](Fixture& b) {
         SerialPortObject* port = b.channel.GetSerialPort();
         const bool isSent = port->Output("/01EDEA\r");
         b.pacer.Sleep(10ms);
         return !isSent || port->Input().find("EDERROR09") == std::string::npos;
       }},
  };
  for (const auto& [what, reset] : refused) {
    SCOPED_TRACE(what);
    Fixture fixture("K220", SerialSettings(), what == refused[0].first ? "secret" : "");
    EXPECT_FALSE(reset(fixture));
    fixture.plant.isSilent = true;
    const Instant start = fixture.pacer.Now();
    EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
    EXPECT_LE(fixture.pacer.Now() - start, 3s + 500ms);
  }
}

TEST(Reconnect, TriesWithGrowingPausesWithinTheDeadline) {
  Fixture fixture;
  fixture.plant.isCut = true;
  fixture.plant.isReachable = false;
  const Instant start = fixture.pacer.Now();
  EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::LinkLost);
  EXPECT_EQ(fixture.Error().happened, "the connection was lost: nobody is there");
  EXPECT_LE(fixture.pacer.Now() - start, 3 * 1200ms);

  Fixture dropped;  // it comes back each time, and is lost again
  dropped.plant.UseFaults({"lost:on=RO"});
  EXPECT_FALSE(dropped.channel.ReadMI(0, 1, 1));
  EXPECT_LE(dropped.plant.connections, 6) << "the pauses grow";

  fixture.pacer.After(500ms, [&] { fixture.pacer.RequestStop(); });
  EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
  EXPECT_EQ(fixture.Error().code, LinkErrorCode::Stopped);
  fixture.pacer.ClearStop();

  fixture.pacer.After(900ms, [&] { fixture.plant.isReachable = true; });
  EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1)) << "within the request";
}

TEST(Reconnect, ALinkThatMayNotBeReopenedStaysLostWithAReason) {
  LinkSettings settings = SerialSettings();
  settings.reconnects = false;
  Fixture fixture("K220", settings);
  fixture.plant.loss = {};  // a port that knows none
  fixture.plant.isCut = true;
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(fixture.channel.ReadMI(0, 1, 1));
    EXPECT_EQ(fixture.Error().code, LinkErrorCode::LinkLost);
    EXPECT_NE(fixture.Error().happened.find("the other side has gone"), std::string::npos) << fixture.Error().Text();
    EXPECT_NE(fixture.Error().cure, "");
  }
  EXPECT_EQ(fixture.plant.connections, 1);
  EXPECT_TRUE(fixture.channel.Open());
  EXPECT_TRUE(fixture.channel.ReadMI(0, 1, 1));
}

}  // namespace
}  // namespace kv
