// What a channel may rely on, whatever kind of port it has got: one run of each promise for each kind.

#include <gtest/gtest.h>
#ifndef _WIN32
#include <netinet/tcp.h>
#endif

#include <memory>
#include <utility>

#include "KvCmDrv1/ports/ListeningPort.h"
#include "KvCmDrv1/ports/ModemPort.h"
#include "KvCmDrv1/ports/SerialPort.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "KvCmDrv1/ports/TcpPort.h"
#include "Partners.h"
#include "desktop/VirtualPacer.h"
#include "desktop/console/ConsolePacer.h"
#include "simulator/SimulatedModem.h"

namespace kv {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// A port and who is at its other end.
class Line {
 public:
  virtual ~Line() = default;
  virtual bool Open() = 0;
  virtual std::string Take(std::size_t count) = 0;  // what has reached the partner
  virtual void Give(std::string_view bytes) = 0;
  virtual void HangUp() = 0;
  [[nodiscard]] virtual bool IsPartnerAlone() = 0;
  [[nodiscard]] virtual kvtest::bare::Handle PartnerHandle() const { return -1; }

  std::unique_ptr<Port> port;
  Pacer* pacer = nullptr;
};

class RealLine : public Line {
 public:
  RealLine() { pacer = &mPacer; }
  std::string Take(std::size_t count) override { return partner.Take(count); }
  void Give(std::string_view bytes) override { partner.Give(bytes); }
  void HangUp() override { partner.Close(); }
  bool IsPartnerAlone() override { return partner.HasEnded(); }
  kvtest::bare::Handle PartnerHandle() const override { return partner.Get(); }

 protected:
  kvtest::Descriptor partner;
  ConsolePacer mPacer;
};

struct TcpLine final : RealLine {
  TcpLine() { port = std::make_unique<TcpPort>("127.0.0.1", listener.Port(), *pacer); }
  bool Open() override {
    const bool isOpen = port->Open(seconds(5)).has_value();
    partner = listener.Accept();
    return isOpen;
  }
  kvtest::Listener listener;
};

struct ListeningLine final : RealLine {
  ListeningLine() { port = std::make_unique<ListeningPort>(socket, number, *pacer); }
  bool Open() override {
    port->Close();
    if (!socket.Listen(number)) return false;
    partner = kvtest::DialLoopback(number);
    return port->Open(seconds(5)).has_value();
  }
  ListeningSocketImpl socket;
  std::uint16_t number = kvtest::FreePort();
};

#ifndef _WIN32
struct SerialLineOnPty final : RealLine {
  SerialLineOnPty() { port = std::make_unique<SerialPort>(pty.name, 115200, SerialFraming{}); }
  bool Open() override { return port->Open(seconds(5)).has_value(); }
  std::string Take(std::size_t count) override { return pty.near.Take(count); }
  void Give(std::string_view bytes) override { pty.near.Give(bytes); }
  void HangUp() override { pty.near.Close(); }
  bool IsPartnerAlone() override {
    pollfd entry{pty.near.Get(), 0, 0};
    return ::poll(&entry, 1, kvtest::kLongestMilliseconds) == 1 && (entry.revents & POLLHUP) != 0;
  }
  kvtest::Pty pty;
};
#endif

struct InProcess : Line {
  InProcess() {
    pacer = &virtualPacer;
    port = std::make_unique<SimulatedPort>(std::make_shared<kvtest::PartnerLine>(partner), "K330", *pacer);
  }
  bool Open() override {
    const bool isOpen = port->Open(seconds(75)).has_value();
    partner.taken.clear();
    return isOpen;
  }
  std::string Take(std::size_t) override { return std::exchange(partner.taken, {}); }
  void Give(std::string_view bytes) override { partner.given += bytes; }
  void HangUp() override { partner.isConnected = false; }
  bool IsPartnerAlone() override { return !partner.isConnected; }

  VirtualPacer virtualPacer;
  kvtest::Partner partner;
};

struct ModemLine final : InProcess {
  ModemLine() {
    auto modem =
        std::make_shared<sim::SimulatedModem>(std::make_unique<kvtest::PartnerLine>(partner), sim::ModemOptions{});
    auto line = std::make_unique<SimulatedPort>(std::move(modem), "COM3", *pacer);
    port = std::make_unique<ModemPort>(std::move(line), ModemSettings{.init = "", .number = "123"}, *pacer);
  }
};

// The port goes first: it uses what its line holds.
struct LineEnd {
  void operator()(Line* line) const {
    line->port.reset();
    delete line;
  }
};
using AnyLine = std::unique_ptr<Line, LineEnd>;

struct Kind {
  const char* name;
  AnyLine (*make)();
  bool hasSpeed;
  bool comesBack = true;  // after the partner has hung up
};

class PortContract : public testing::TestWithParam<Kind> {
 protected:
  AnyLine line = GetParam().make();
  Port& port = *line->port;

  void ExpectClosed() const {
    EXPECT_FALSE(port.IsOpen());
    std::string bytes = "kept";
    std::string_view rest = "kept, too";
    EXPECT_EQ(port.Read(bytes, {}), Port::Result::Lost);
    EXPECT_EQ(port.Write(rest, {}), Port::Result::Lost);
    EXPECT_EQ(bytes + ", " + std::string(rest), "kept, kept, too");
  }
};

TEST_P(PortContract, EveryByteArrivesInOrderAndIsAppended) {
  ExpectClosed();
  ASSERT_TRUE(line->Open());
  ASSERT_TRUE(kvtest::WriteAll(port, kvtest::EveryByte()));
  EXPECT_EQ(line->Take(256), kvtest::EveryByte());
  std::string_view none;
  EXPECT_NE(port.Write(none, {}), Port::Result::Lost);
  line->Give(kvtest::EveryByte());
  EXPECT_EQ(kvtest::ReadFrom(port, 256), kvtest::EveryByte());
  line->Give("y");
  std::string bytes = "x";
  while (port.Read(bytes, milliseconds(10)) == Port::Result::Nothing) continue;
  EXPECT_EQ(bytes, "xy");
}

TEST_P(PortContract, SilenceTakesItsSlice) {
  ASSERT_TRUE(line->Open());
  for (const int slice : {0, 30}) {
    std::string bytes = "x";
    const Instant start = line->pacer->Now();
    EXPECT_EQ(port.Read(bytes, milliseconds(slice)), Port::Result::Nothing);
    EXPECT_GE(line->pacer->Now() - start, milliseconds(std::max(slice - 1, 0)));
    EXPECT_LE(line->pacer->Now() - start, milliseconds(dynamic_cast<InProcess*>(line.get()) ? slice : slice + 200));
    EXPECT_EQ(bytes, "x");
  }
  EXPECT_TRUE(port.IsOpen());
}

TEST_P(PortContract, KeepsTheRestWhenTheLineTakesNoMore) {
  ASSERT_TRUE(line->Open());
  if (dynamic_cast<InProcess*>(line.get())) return;  // takes everything
  const std::string bytes(16'000'000, 'k');
  std::string_view rest = bytes;
  auto result = Port::Result::Done;
  while (result == Port::Result::Done && !rest.empty()) result = port.Write(rest, milliseconds(1));
  ASSERT_EQ(result, Port::Result::Nothing);
  const Instant start = line->pacer->Now();
  while (port.Write(rest, milliseconds(30)) == Port::Result::Done) continue;
  EXPECT_GE(line->pacer->Now() - start, milliseconds(29)) << "it waits for room";
  const std::size_t sent = bytes.size() - rest.size();
  EXPECT_EQ(line->Take(sent).size(), sent);
  EXPECT_EQ(port.Write(rest, milliseconds(1)), Port::Result::Done);
}

#ifndef _WIN32  // there nobody can go through all that a process has open
TEST_P(PortContract, AFrameLeavesWithTheCallThatWritesIt) {
  ASSERT_TRUE(line->Open());
  int sockets = 0;
  for (int handle = 0; handle < 1000; ++handle) {
    int isOn = 0;
    socklen_t size = sizeof isOn;
    if (handle == line->PartnerHandle() || ::getsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &isOn, &size) != 0) continue;
    sockaddr_in peer{};
    size = sizeof peer;
    if (::getpeername(handle, reinterpret_cast<sockaddr*>(&peer), &size) != 0) continue;  // it listens
    EXPECT_NE(isOn, 0) << "a second frame would wait for the answer to the first";
    ++sockets;
  }
  EXPECT_EQ(sockets, GetParam().hasSpeed ? 0 : 1);
}
#endif

// The number of a handle that was given back may belong to somebody else by now.
TEST_P(PortContract, ClosedTwiceItTakesNothingFromTheNextAndOpensAgain) {
  ASSERT_TRUE(line->Open());
  port.Close();
  EXPECT_TRUE(line->IsPartnerAlone());
  const auto next = GetParam().make();
  ASSERT_TRUE(next->Open());
  port.Close();
  ExpectClosed();
  for (Line* each : {next.get(), line.get()}) {
    EXPECT_TRUE(each->Open()) << "also where it is open";
    ASSERT_TRUE(kvtest::WriteAll(*each->port, "here"));
    EXPECT_EQ(each->Take(4), "here");
  }
}

TEST_P(PortContract, TheLastBytesComeBeforeTheLossAndItsReason) {
  ASSERT_TRUE(line->Open());
  EXPECT_EQ(port.LossReason().happened, "");
  if (GetParam().comesBack) line->Give("last words");  // with its end a pseudo terminal loses what it holds
  line->HangUp();
  EXPECT_EQ(kvtest::ReadFrom(port, 100).substr(0, 10), GetParam().comesBack ? "last words" : "");
  PortError reason = port.LossReason();
  reason.cure += "\n" + port.Description();
  test::ExpectAsRecorded([&reason] { return kvtest::Words(reason); });
  ExpectClosed();
  port.Close();
  if (!GetParam().comesBack) return;
  ASSERT_TRUE(line->Open());
  EXPECT_EQ(port.LossReason().happened, "");
}

TEST_P(PortContract, OnlyAnOpenLineWithASpeedTakesAnother) {
  const bool isInProcess = std::string_view(GetParam().name) == "simulated";  // set before it is opened
  EXPECT_EQ(port.SetBaudRate(9600), isInProcess);
  ASSERT_TRUE(line->Open());
  for (const auto& [baudRate, byteTime] : {std::pair{9600, 1042}, {200, 50000}}) {
    EXPECT_EQ(port.SetBaudRate(baudRate), GetParam().hasSpeed);
    EXPECT_EQ(port.ByteTime(), GetParam().hasSpeed ? Duration(byteTime) : Duration{});
  }
  EXPECT_FALSE(port.SetBaudRate(0));
}

template <typename Made>
AnyLine Make() {
  return AnyLine(new Made);
}

const std::vector<Kind> kKinds = {Kind{"tcp", Make<TcpLine>, false}, Kind{"listening", Make<ListeningLine>, false},
#ifndef _WIN32
                                  Kind{"serial", Make<SerialLineOnPty>, true, false},
#endif
                                  Kind{"simulated", Make<InProcess>, true}, Kind{"modem", Make<ModemLine>, true}};

INSTANTIATE_TEST_SUITE_P(Kinds, PortContract, testing::ValuesIn(kKinds),
                         [](const auto& kind) { return kind.param.name; });

}  // namespace
}  // namespace kv
