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

  ConsolePacer pacer;
  ListeningSocketImpl socket;
  const std::uint16_t number = kvtest::FreePort();
  ListeningPort port{socket, number, pacer};
};

TEST_F(ListeningPortTest, TakesOneControllerThatDialsIn) {
  ASSERT_TRUE(socket.Listen(number));
  const auto controller = kvtest::DialLoopback(number);
  ASSERT_TRUE(port.Open(seconds(5)).has_value());
  EXPECT_THAT(port.Description(), HasSubstr("127.0.0.1:"));
  EXPECT_FALSE(port.HasNewerCall());

  const auto waiting = kvtest::DialLoopback(number);
  ASSERT_TRUE(port.HasNewerCall());
  port.Close();
  EXPECT_EQ(controller.Take(1), "");
  EXPECT_EQ(waiting.Take(1), "");
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
    EXPECT_THAT(port.LossReason().happened, HasSubstr("closed the connection"));
    EXPECT_TRUE(Reaches(State::Listening));
  }
  EXPECT_EQ(events, (std::vector<std::string>{"established", "terminated", "established", "terminated"}));
}

TEST_F(ListeningPortTest, IsLostWhenAnotherConnectionTakesItsPlace) {
  ASSERT_TRUE(socket.Listen(number));
  const auto first = kvtest::DialLoopback(number);
  ASSERT_TRUE(port.Open(seconds(5)).has_value());
  ASSERT_TRUE(socket.Listen());
  const auto second = kvtest::DialLoopback(number);
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
    ASSERT_TRUE(socket.Listen(number));
    std::vector<kvtest::Descriptor> strangers;
    strangers.push_back(kvtest::DialLoopback(number));
    ASSERT_TRUE(port.Open(seconds(5)).has_value());
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
    EXPECT_EQ(strangers.front().Take(1), "");
    EXPECT_EQ(strangers[150].Take(1), "") << "bounded: the oldest have left";
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
  ASSERT_TRUE(socket.Listen(number));
  const auto first = kvtest::DialLoopback(number);
  ASSERT_TRUE(port.Open(seconds(5)).has_value());
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
  EXPECT_EQ(controller.Take(1), "");
  EXPECT_FALSE(socket.Listen(0));
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
}

TEST_F(ListeningPortTest, SaysWhyNobodyIsThere) {
  const auto nobody = port.Open(milliseconds(30));
  ASSERT_FALSE(nobody.has_value());
  EXPECT_THAT(nobody.error().happened, HasSubstr("no controller has dialled in"));

  pacer.RequestStop();
  EXPECT_THAT(port.Open(std::chrono::hours(1)).error().happened, HasSubstr("was stopped"));
  pacer.ClearStop();

  const kvtest::Listener other;
  EXPECT_FALSE(socket.Listen(other.Port()));
  const auto inUse = ListeningPort(socket, other.Port(), pacer).Open(seconds(5));
  ASSERT_FALSE(inUse.has_value());
  EXPECT_THAT(inUse.error().happened, HasSubstr("cannot be listened on"));
}

}  // namespace
}  // namespace kv
