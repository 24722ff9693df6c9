#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/ListeningSocketImpl.h"
#include "Partners.h"
#include "WorkingPacer.h"
#include "simulator/SimulatedController.h"

// Who dials in, over real sockets. The callers live on the driver's pacer: at each turn they do what is on.

namespace kv {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

// A simulated controller that dials in, and may lose power without hanging up.
class Caller {
 public:
  Caller(std::uint16_t port, const std::string& name, Instant now) : mSocket(kvtest::DialLoopback(port)) {
    sim::SimulatorOptions options;
    options.model = "K220-22-R1";
    options.stateFile = name;  // the serial number depends on it
    mController = sim::SimulatedController::Create(options).value();
    mLine = mController->NewLine();
    EXPECT_TRUE(mLine->Connect(now));
    EXPECT_GE(mSocket.Get(), 0);
  }

  void Work(Instant now) {
    if (!hasPower) return;
    const std::string bytes = mSocket.TakeNow();
    if (!bytes.empty()) mLine->Write(bytes, now);
    const std::string reply = mLine->Read(now);
    if (!reply.empty()) mSocket.Give(reply);
  }

  bool hasPower = true;

 private:
  kvtest::Descriptor mSocket;
  std::unique_ptr<sim::SimulatedController> mController;
  std::unique_ptr<InProcessLine> mLine;
};

class CallersTest : public testing::Test {
 protected:
  CallersTest() {
    settings.transport = Transport::Listen;
    settings.tcpPort = kvtest::FreePort();
    settings.timeOut = 100ms;
    pacer.onTurn = [this](Instant now) {
      for (const auto& caller : callers) caller->Work(now);
      if (!plans.empty() && plans.front().first()) {
        const auto plan = std::move(plans.front().second);
        plans.erase(plans.begin());
        plan();
      }
    };
    driver.OnComMessage = [this](const std::string& message) { messages += message + "\n"; };
    driver.ConfigureForSession({.folder = "", .socket = &socket});
    driver.UseSettings(settings, false);
  }

  // Does `what` at the first turn at which the messages hold `after`.
  void When(const std::string& after, std::function<void()> what) {
    plans.emplace_back([this, after] { return messages.find(after) != std::string::npos; }, std::move(what));
  }
  Caller& Dial(const std::string& name) {
    callers.push_back(std::make_unique<Caller>(settings.tcpPort, name, pacer.Now()));
    return *callers.back();
  }
  std::uint32_t SerialNumber(Channel& channel) { return channel.GetControllerInfo(1).value().serialNumber; }

  WorkingPacer pacer;
  ListeningSocketImpl socket;
  LinkSettings settings;
  std::string messages;
  Driver driver{pacer, {}, MakePort};
  std::vector<std::unique_ptr<Caller>> callers;
  std::vector<std::pair<std::function<bool()>, std::function<void()>>> plans;
  std::vector<kvtest::Descriptor> strangers;
};

TEST_F(CallersTest, StrangersAreDroppedAndNamedUntilTheControllerComes) {
  ASSERT_TRUE(socket.Listen(settings.tcpPort));
  for (const char* greeting : {"", "GET / HTTP/1.1\r\nHost: plc\r\n\r\n", "/01IDK220|10|4.60|19AB\r"}) {
    strangers.push_back(kvtest::DialLoopback(settings.tcpPort));
    strangers.back().Give(greeting);
  }
  for (int i = 0; i < 300; ++i) {  // port scanners come and go
    kvtest::DialLoopback(settings.tcpPort).Close();
    socket.Poll();
  }
  strangers.push_back(kvtest::DialLoopback(settings.tcpPort));
  strangers.back().Give("SSH-2.0-x\r\n");
  When("no controller's answer", [this] { Dial("mill"); });
  const auto channel = driver.GetChannel();
  ASSERT_TRUE(channel) << driver.LastError().Text();
  EXPECT_TRUE(channel->ReadMI(0, 1, 1));
  EXPECT_THAT(messages, HasSubstr("A caller was dropped: 127.0.0.1:"));
}

TEST_F(CallersTest, ANewerCallOfTheSameControllerTakesThePlaceOfTheDeadOne) {
  ASSERT_TRUE(socket.Listen(settings.tcpPort));
  Caller& first = Dial("mill");
  const auto channel = driver.GetChannel();
  ASSERT_TRUE(channel) << driver.LastError().Text();
  const std::uint32_t serialNumber = SerialNumber(*channel);
  first.hasPower = false;
  strangers.push_back(kvtest::DialLoopback(settings.tcpPort));
  When("does not answer, and a newer call has come", [this] { Dial("pump"); });
  When("instead of", [this] { Dial("mill"); });
  for (int i = 0; i < 20 && !channel->ReadMI(0, 1, 1); ++i) {
  }
  ASSERT_TRUE(channel->ReadMI(0, 1, 1)) << channel->LastError().Text() << "\n" << messages;
  EXPECT_EQ(SerialNumber(*channel), serialNumber) << messages;
  EXPECT_THAT(messages, HasSubstr("it does not answer\n"));
  EXPECT_THAT(messages, HasSubstr("serial number"));
}

TEST_F(CallersTest, TheLimitEndsTheWaitAndTellsWhoWasThere) {
  settings.serialNumber = 4711;
  driver.UseSettings(settings, false);
  ASSERT_TRUE(socket.Listen(settings.tcpPort));
  When("instead of serial number 4711", [this] { pacer.now += 1h; });
  Dial("pump");
  EXPECT_FALSE(driver.GetChannel());
  EXPECT_EQ(driver.LastError().code, LinkErrorCode::CannotOpen);
  EXPECT_THAT(driver.LastError().Text(), HasSubstr("1 caller was dropped, the last: 127.0.0.1:"));
  EXPECT_THAT(driver.LastError().Text(), HasSubstr("instead of serial number 4711"));
}

}  // namespace
}  // namespace kv
