// The driver and kvsim over a real TCP connection and a real pseudo terminal.

#include <gtest/gtest.h>

#include <csignal>
#include <ctime>
#include <iostream>

#include "RealFixture.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::matrix {
namespace {

using namespace mdlDataTypesView;
using namespace std::chrono_literals;
using enum OperandTypeCode;
using Texts = std::vector<std::string>;
using Words = std::vector<std::int16_t>;

class RealLine : public testing::TestWithParam<Transport> {};

struct TypeRow {
  OperandTypeCode type;
  Texts texts;  // written, if it can be, and read again
};

// The lowest and the highest value of each type that can be written.
const std::vector<TypeRow> kAurexTypes = {
    {MB, {"1", "0", "1"}},
    {MI, {"-32768", "32767", "4660"}},
    {MF, {"1.5", "-0.25", "1e+10"}},
    {ML, {"-2147483648", "2147483647", "-1"}},
    {DW, {"0", "4294967295", "305419896"}},
    {TimerPreset, {"00:00:00.00", "99:59:59.99", "01:02:03.04"}},
    {TimerCurrent, {"00:00:00.01", "99:59:59.98", "10:20:30.40"}},
    {CounterPreset, {"0", "65535", "12"}},
    {CounterCurrent, {"1", "65534", "13"}},
    {XB, {"0", "1", "1"}},
    {XI, {"-32768", "32767", "-2"}},
    {XL, {"-2147483648", "2147483647", "3"}},
    {XDW, {"0", "4294967295", "4"}},
    {SB, {"0", "0", "0"}},
    {SI, {"0", "0", "0"}},
    {SL, {"0", "0", "0"}},
    {SDW, {"0", "0", "0"}},
    {Input, {"0", "0", "0"}},
    {Output, {"0", "0", "0"}},
    {TimerValue, {"0", "0", "0"}},
    {CounterValue, {"0", "0", "0"}},
};
const std::vector<TypeRow> kCompactTypes = {
    {MB, {"1", "0", "1"}},
    {MI, {"-32768", "32767", "4660"}},
    {DBI, {"-32768", "32767", "22136"}},
    {TimerPreset, {"0", "163830", "35990000"}},
    {TimerCurrent, {"10", "1638300", "20000"}},
    {SB, {"0", "0", "0"}},
    {SI, {"0", "0", "0"}},
    {Input, {"0", "0", "0"}},
    {Output, {"0", "0", "0"}},
    {TimerValue, {"0", "0", "0"}},
};

TEST_P(RealLine, EachTypeIsReadAndEachWritableOneWritten) {
  const struct {
    const char* model;
    const std::vector<TypeRow>& rows;
  } controllers[] = {{"K670-T40", kAurexTypes}, {"Q50", kCompactTypes}};
  for (const auto& controller : controllers) {
    RealFixture fixture(GetParam());
    ASSERT_TRUE(fixture.Serve({"--model", controller.model}));
    Channel* link = fixture.Link();
    ASSERT_NE(link, nullptr) << fixture.driver.LastError().Text();
    ASSERT_TRUE(link->StopController(1)) << link->LastError().Text();  // nothing moves by itself
    for (const TypeRow& row : controller.rows) {
      SCOPED_TRACE(std::string(controller.model) + ", " + std::string(TypeName(row.type)));
      const Region region{7, 9, row.type};
      EXPECT_TRUE(WriteRegion(*link, controller.model, region, row.texts));
    }
    for (const TypeRow& row : controller.rows) {
      SCOPED_TRACE(std::string(controller.model) + ", " + std::string(TypeName(row.type)));
      EXPECT_EQ(ReadRegion(*link, controller.model, {7, 9, row.type}), row.texts);
    }
  }
}

TEST_P(RealLine, FaultsArePassedOrTold) {
  for (const char* rule : {"noreply:every=5", "dribble:ms=2,every=5", "damage:every=5", "lost:at=9,every=5"}) {
    SCOPED_TRACE(rule);
    RealFixture fixture(GetParam());
    ASSERT_TRUE(fixture.Serve({"--model", "Q50", "--fault", rule}));
    int done = 0;
    for (std::int16_t number = 1; number <= 10; ++number) {
      Channel* link = fixture.Link();
      if (link == nullptr || !link->WriteMI(0, Words{number}, 1)) continue;
      const auto read = link->ReadMI(0, 1, 1);
      EXPECT_TRUE(!read || *read == Words{number});
      done += int{read.has_value()};
    }
    EXPECT_GE(done, 5);
  }
}

TEST_P(RealLine, AStopTakesEffectAtOnceWhenNobodyAnswers) {
  const kvtest::Listener silent;
  const kvtest::Pty terminal;
  RealFixture fixture(GetParam());
  fixture.UsePort(silent.Port());
  fixture.UseTerminal(terminal.name);
  Channel* link = fixture.Link();
  ASSERT_NE(link, nullptr) << fixture.driver.LastError().Text();
  link->SetTimeOut(20000);

  // Ctrl-C in 150 ms from now.
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGINT;
  timer_t timer{};
  ASSERT_EQ(::timer_create(CLOCK_MONOTONIC, &event, &timer), 0);
  const itimerspec soon{{}, {0, 150'000'000}};
  const Instant stop = fixture.pacer.Now() + 150ms;
  ASSERT_EQ(::timer_settime(timer, 0, &soon, nullptr), 0);
  EXPECT_FALSE(link->ReadMI(0, 1, 1));
  const Duration took = fixture.pacer.Now() - stop;
  ::timer_delete(timer);
  EXPECT_EQ(link->LastError().code, LinkErrorCode::Stopped);
  EXPECT_LT(took, 1s);
  std::cout << "stopped after " << took.count() << " us\n";
}

TEST_P(RealLine, AfterACutTheSameControllerIsWorkedOnAndNoOther) {
  RealFixture fixture(GetParam());
  const std::string state = (fixture.folder.Path() / "plc.state").string();
  const std::string otherState = (fixture.folder.Path() / "other.state").string();
  const std::vector<std::string> same = {"--model", "K670-T40", "--state", state};
  ASSERT_TRUE(fixture.Serve(same));
  Channel* link = fixture.Link();
  ASSERT_NE(link, nullptr) << fixture.driver.LastError().Text();
  ASSERT_TRUE(link->WriteMI(5, Words{41, 42}, 1));

  fixture.End();
  EXPECT_FALSE(link->ReadMI(5, 2, 1));
  EXPECT_EQ(link->LastError().code, LinkErrorCode::LinkLost);
  EXPECT_FALSE(link->LastError().cause.empty() || link->LastError().cure.empty()) << link->LastError().Text();
  ASSERT_TRUE(fixture.Serve(same));
  EXPECT_EQ(link->ReadMI(5, 2, 1), (Words{41, 42})) << link->LastError().Text();
  EXPECT_TRUE(link->WriteMI(5, Words{43}, 1)) << link->LastError().Text();

  for (const std::vector<std::string>& other : {std::vector<std::string>{"--model", "K670-T40", "--state", otherState},
                                                std::vector<std::string>{"--model", "K450"}}) {
    fixture.End();
    ASSERT_TRUE(fixture.Serve(other));
    for (int i = 0; i < 2; ++i) {
      EXPECT_FALSE(link->WriteMI(5, Words{99}, 1));
      EXPECT_EQ(link->LastError().code, LinkErrorCode::OtherController) << link->LastError().Text();
    }
    EXPECT_EQ(fixture.Link(), nullptr) << "not even opened until the user closes the link";
    EXPECT_EQ(fixture.driver.LastError().code, LinkErrorCode::OtherController);
    fixture.driver.CloseDriver();
    link = fixture.Link();
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->ReadMI(5, 1, 1), Words{0}) << "nothing has reached it";
    fixture.driver.CloseDriver();
    fixture.End();
    ASSERT_TRUE(fixture.Serve(same));
    link = fixture.Link();
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->ReadMI(5, 1, 1), Words{43});
  }
}

INSTANTIATE_TEST_SUITE_P(Lines, RealLine, testing::Values(Transport::Tcp, Transport::Serial),
                         [](const auto& line) { return line.param == Transport::Tcp ? "tcp" : "pty"; });

}  // namespace
}  // namespace kv::matrix
