#include "KvCmDrv1/ports/TcpPort.h"

#include <gmock/gmock.h>

#include "KvCmDrv1/ports/PortErrors.h"
#include "Partners.h"
#include "WorkingPacer.h"

namespace kv {
namespace {

using kvtest::Descriptor;
using kvtest::Listener;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

class TcpPortTest : public testing::Test {
 protected:
  // Opens `opening` on `listener` and gives the other end.
  Descriptor Connect(TcpPort& opening) {
    EXPECT_TRUE(opening.Open(seconds(5)).has_value());
    return listener.Accept();
  }

  ConsolePacer pacer;
  Listener listener;
  TcpPort port{"127.0.0.1", listener.Port(), pacer};
};

TEST_F(TcpPortTest, FindsAHostByName) {
  TcpPort byName("localhost", listener.Port(), pacer);
  EXPECT_GE(Connect(byName).Get(), 0);
}

TEST_F(TcpPortTest, TellsAResetFromAClose) {
  auto partner = Connect(port);
  kvtest::Reset(partner);
  EXPECT_EQ(kvtest::ReadFrom(port, 1), "");
  EXPECT_THAT(port.LossReason().happened, HasSubstr("broke the connection off"));
}

TEST_F(TcpPortTest, SaysWhyItDoesNotConnect) {
  listener.Close();
  const PortError refused = kvtest::WhyNot(port);
  EXPECT_EQ(refused.happened, port.Description() + " refused the connection");
  EXPECT_THAT(refused.cause, HasSubstr("nothing listens on that TCP port"));

  // The name is refused by the system itself, without asking anybody.
  TcpPort unknown("no..such..host", 20300, pacer);
  EXPECT_EQ(kvtest::WhyNot(unknown).happened, "the host of no..such..host:20300 is not known");
}

TEST_F(TcpPortTest, GivesUpAtTheLimitAndWhenItIsStopped) {
  Listener full(0);  // takes one connection into its queue and is silent to the others
  std::vector<Descriptor> queue;
  for (int i = 0; i < 2; ++i) queue.push_back(kvtest::BeginDialling(full.Port()));
  int turns = 0;
  WorkingPacer painting;
  painting.onTurn = [&turns](Instant) { ++turns; };
  TcpPort silent("127.0.0.1", full.Port(), painting);
  EXPECT_THAT(kvtest::WhyNot(silent, milliseconds(50)).happened, HasSubstr("did not answer in time"));
  EXPECT_GT(turns, 0) << "the window is painted meanwhile";

  painting.RequestStop();
  EXPECT_THAT(kvtest::WhyNot(silent, std::chrono::hours(1)).happened, HasSubstr("was stopped"));
}

}  // namespace
}  // namespace kv
