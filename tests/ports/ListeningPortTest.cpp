#include "KvCmDrv1/ports/ListeningPort.h"

#include <gmock/gmock.h>

#include "Partners.h"
#include "desktop/console/ConsolePacer.h"

namespace kv {
namespace {

using State = ListeningSocket::State;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

class ListeningPortTest : public testing::Test {
 protected:
  // Polls until the socket is in `state`: what the other side did is seen a moment later.
  bool Reaches(State state) {
    for (int i = 0; i < kvtest::kLongestMilliseconds / 10 && socket.GetState() != state; ++i) {
      socket.Poll();
      if (socket.GetState() != state) pacer.Sleep(milliseconds(10));
    }
    return socket.GetState() == state;
  }
  // The first one that dials in.
  kvtest::Descriptor Connect() {
    EXPECT_TRUE(socket.Listen(number));
    auto controller = kvtest::DialLoopback(number);
    EXPECT_FALSE(port.HasNewerCall()) << "newer than none";
    EXPECT_TRUE(port.Open(seconds(5)).has_value());
    return controller;
  }

  ConsolePacer pacer;
  ListeningSocketImpl socket;
  const std::uint16_t number = kvtest::FreePort();
  ListeningPort port{socket, number, pacer};
};

TEST_F(ListeningPortTest, TakesOneControllerThatDialsIn) {
  const auto controller = Connect();
  EXPECT_THAT(port.Description(), HasSubstr("127.0.0.1:"));
  EXPECT_FALSE(port.HasNewerCall());

  const auto waiting = kvtest::DialLoopback(number);
  ASSERT_TRUE(port.HasNewerCall());
  port.Close();
  EXPECT_FALSE(port.HasNewerCall());
  EXPECT_TRUE(controller.HasEnded());
  EXPECT_TRUE(waiting.HasEnded());
  EXPECT_LT(kvtest::DialLoopback(number).Get(), 0) << "nobody is meant to dial in any more";

  EXPECT_FALSE(port.Open(milliseconds(30)).has_value());
  EXPECT_GE(kvtest::DialLoopback(number).Get(), 0) << "the next try will find the controller";
  EXPECT_EQ(socket.GetState(), State::Listening);
  port.Close();
  EXPECT_LT(kvtest::DialLoopback(number).Get(), 0);
}

TEST_F(ListeningPortTest, LetsTheProgramAnswerTheEvents) {
  std::vector<std::string> events;
  socket.OnConnectionRequest = [&](int requestId) {
    socket.Close();
    events.push_back(socket.Accept(requestId) ? "established" : "gone");
  };
  socket.OnClose = [&] {
    socket.Close();
    if (socket.GetState() == State::Closed) (void)socket.Listen();
    events.push_back("terminated");
  };
  ASSERT_TRUE(socket.Listen(number));
  for (int round = 1; round <= 2; ++round) {
    auto controller = kvtest::DialLoopback(number);
    ASSERT_TRUE(port.Open(seconds(5)).has_value());
    controller.Close();
    EXPECT_EQ(kvtest::ReadFrom(port, 1), "");
    test::ExpectAsRecorded([this] { return kvtest::Words(port.LossReason()); });
    EXPECT_TRUE(Reaches(State::Listening));
  }
  EXPECT_EQ(events, (std::vector<std::string>{"established", "terminated", "established", "terminated"}));
}

TEST_F(ListeningPortTest, IsLostWhenAnotherConnectionTakesItsPlace) {
  const auto first = Connect();
  const auto second = kvtest::DialLoopback(number);
  ASSERT_TRUE(socket.Listen());
  EXPECT_TRUE(first.HasEnded()) << "left, as it is not listened to any more";
  EXPECT_FALSE(second.IsReady(0)) << "who waits keeps his place";
  ASSERT_TRUE(Reaches(State::Requested));
  ASSERT_TRUE(socket.Accept(socket.RequestId()));
  std::string bytes;
  EXPECT_EQ(port.Read(bytes, milliseconds(1)), Port::Result::Lost);
  EXPECT_TRUE(port.Open(seconds(5)).has_value());
}

// Whether the program answers the events, as that with windows does, or the port does.
TEST_F(ListeningPortTest, TakesTheNewestCallerWhenAPartnerIsDropped) {
  for (const bool isAnswered : {false, true}) {
    if (isAnswered) {
      socket.OnConnectionRequest = [&](int requestId) {
        socket.Close();
        EXPECT_TRUE(socket.Accept(requestId));
      };
    }
    std::vector<kvtest::Descriptor> strangers;
    strangers.push_back(Connect());
    // Far more than may wait; the system refuses none of them, and none of them is answered.
    for (int i = 0; i < 300; ++i) {
      strangers.push_back(kvtest::DialLoopback(number));
      ASSERT_GE(strangers.back().Get(), 0) << i;
      ASSERT_TRUE(port.HasNewerCall()) << i;
    }
    const auto controller = kvtest::DialLoopback(number);
    ASSERT_TRUE(port.HasNewerCall());
    EXPECT_TRUE(port.IsOpen());
    port.DropPartner();
    EXPECT_TRUE(strangers.front().HasEnded());
    EXPECT_TRUE(strangers[150].HasEnded()) << "bounded: the oldest have left";
    ASSERT_TRUE(port.Open(seconds(5)).has_value());
    controller.Give("here");
    EXPECT_EQ(kvtest::ReadFrom(port, 4), "here");
    EXPECT_FALSE(port.HasNewerCall()) << "those that wait have called before";
    port.DropPartner();
    ASSERT_TRUE(port.Open(seconds(5)).has_value());
    strangers.back().Give("last");
    EXPECT_EQ(kvtest::ReadFrom(port, 4), "last");
    socket.Close();
    EXPECT_LT(kvtest::DialLoopback(number).Get(), 0) << "nobody is meant to dial in";
  }
}

TEST_F(ListeningPortTest, ClosedTwiceItTakesThePortFromNobody) {
  const auto first = Connect();
  port.Close();
  EXPECT_EQ(socket.GetState(), State::Closed);
  ListeningPort next(socket, number, pacer);
  EXPECT_FALSE(next.Open(milliseconds(1)).has_value());
  port.Close();
  EXPECT_EQ(socket.GetState(), State::Listening) << "the next one still waits";
  const auto controller = kvtest::DialLoopback(number);
  ASSERT_TRUE(next.Open(seconds(5)).has_value());
  EXPECT_FALSE(port.IsOpen());
  for (int i = 0; i < 2; ++i) socket.Stop();
  EXPECT_TRUE(controller.HasEnded());
  EXPECT_FALSE(socket.Listen(0));
}

// What it tells of itself after each step stands in the record.
TEST_F(ListeningPortTest, KnowsWhereItStands) {
  std::string told;
  const auto tell = [&](const char* step, bool isDone = true) {
    told += std::string(step) + (isDone ? ": " : " fails: ") + std::to_string(static_cast<int>(socket.GetState()));
    const int facts[] = {socket.RequestId(),      static_cast<int>(socket.ConnectionNumber()),
                         socket.HasNewerCaller(), port.IsOpen(),
                         port.HasNewerCall(),     socket.LocalPort() == number};
    for (const int fact : facts) told += " " + std::to_string(fact);
    told += " " + kvtest::Words({port.Description(), port.LossReason().happened, ""});
  };
  tell("new");
  tell("listen to none", socket.Listen(0));
  tell("listen", socket.Listen(number));
  std::vector<kvtest::Descriptor> callers;
  const auto dial = [&] { callers.push_back(kvtest::DialLoopback(number)); };
  dial(), socket.Poll(), tell("somebody calls");
  dial(), socket.Poll(), tell("another one");
  tell("accept the other", socket.Accept(socket.RequestId() + 1));
  tell("accept", socket.Accept(socket.RequestId()));
  tell("accept again", socket.Accept(socket.RequestId()));
  tell("open", port.Open(seconds(5)).has_value());
  dial(), socket.Poll(), tell("a third one");
  port.DropPartner(), tell("drop");
  socket.Poll(), tell("look");
  tell("open", port.Open(seconds(5)).has_value());
  callers.back().Close(), tell("it hangs up", Reaches(State::Listening));
  tell("read", !kvtest::ReadFrom(port, 1).empty());
  tell("open", port.Open(seconds(5)).has_value());
  tell("listen again", socket.Listen());
  socket.Poll(), tell("look");
  dial(), tell("open", port.Open(seconds(5)).has_value());
  port.Close(), tell("close");
  socket.Close(), tell("close the socket");
  tell("listen again", socket.Listen());
  socket.Stop(), tell("stop");
  test::ExpectAsRecorded([&told] { return told; });
}

TEST_F(ListeningPortTest, RefusesARequestThatHasGone) {
  ASSERT_TRUE(socket.Listen(number));
  auto controller = kvtest::DialLoopback(number);
  ASSERT_TRUE(Reaches(State::Requested));
  const int requestId = socket.RequestId();
  EXPECT_FALSE(socket.Accept(requestId + 1));
  controller.Close();
  EXPECT_TRUE(Reaches(State::Listening));
  EXPECT_FALSE(socket.Accept(requestId));
  controller = kvtest::DialLoopback(number);
  ASSERT_TRUE(Reaches(State::Requested));
  const auto behind = kvtest::DialLoopback(number);
  socket.Close();
  EXPECT_TRUE(socket.Accept(socket.RequestId()));
  EXPECT_FALSE(behind.IsReady(20)) << "whoever calls meanwhile waits";
}

TEST_F(ListeningPortTest, SaysWhyNobodyIsThere) {
  EXPECT_THAT(kvtest::WhyNot(port, milliseconds(30)).happened, HasSubstr("no controller has dialled in"));

  pacer.RequestStop();
  EXPECT_THAT(kvtest::WhyNot(port, std::chrono::hours(1)).happened, HasSubstr("was stopped"));
  pacer.ClearStop();

  const kvtest::Listener other;
  EXPECT_FALSE(socket.Listen(other.Port()));
  ListeningPort inUse(socket, other.Port(), pacer);
  EXPECT_THAT(kvtest::WhyNot(inUse).happened, HasSubstr("cannot be listened on"));
}

}  // namespace
}  // namespace kv
