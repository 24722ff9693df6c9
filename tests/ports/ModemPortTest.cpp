#include "KvCmDrv1/ports/ModemPort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Partners.h"
#include "base/InProcessLine.h"
#include "desktop/VirtualPacer.h"
#include "simulator/SimulatedModem.h"

namespace kv {
namespace {

using sim::DialResult;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;

constexpr Duration kLimit = seconds(75);

// A controller that sends back what it gets.
class EchoLine final : public InProcessLine {
 public:
  struct State {
    bool isConnected = false;
    std::string waiting;
    std::string taken;
  };
  explicit EchoLine(State& state) : mState(state) {}

  bool Connect(Instant) override { return mState.isConnected = true; }
  void Disconnect(Instant) override { mState.isConnected = false; }
  bool IsConnected() const override { return mState.isConnected; }
  void Write(std::string_view bytes, Instant) override {
    mState.waiting += bytes;
    mState.taken += bytes;
  }
  std::string Read(Instant) override { return std::exchange(mState.waiting, {}); }
  std::optional<Instant> NextEvent() const override { return std::nullopt; }

 private:
  State& mState;
};

// The serial port that the modem is on, in virtual time. It hands over at most `piece` bytes at once.
class LinePort final : public Port {
 public:
  LinePort(std::unique_ptr<InProcessLine> line, VirtualPacer& pacer, std::size_t piece)
      : mLine(std::move(line)), mPacer(pacer), mPiece(piece) {}

  std::expected<void, PortError> Open(Duration) override {
    if (!mLine->Connect(mPacer.Now())) return std::unexpected(PortError{"no port", "", ""});
    return {};
  }
  void Close() override { mLine->Disconnect(mPacer.Now()); }
  bool IsOpen() const override { return mLine->IsConnected(); }
  Result Write(std::string_view& bytes, Duration) override {
    mLine->Write(bytes, mPacer.Now());
    bytes = {};
    return Result::Done;
  }
  Result Read(std::string& buffer, Duration slice) override {
    mWaiting += mLine->Read(mPacer.Now());
    if (mWaiting.empty()) {
      mPacer.Sleep(slice);
      return Result::Nothing;
    }
    buffer += mWaiting.substr(0, mPiece);
    mWaiting.erase(0, mPiece);
    return Result::Done;
  }
  const PortError& LossReason() const override { return mLoss; }
  Duration ByteTime() const override { return Duration(87); }
  bool SetBaudRate(int) override { return true; }
  std::string Description() const override { return "COM3, 115200 8N1"; }

 private:
  std::unique_ptr<InProcessLine> mLine;
  VirtualPacer& mPacer;
  std::size_t mPiece;
  std::string mWaiting;
  PortError mLoss;
};

class ModemPortTest : public testing::Test {
 protected:
  ModemPort& Make(const sim::ModemOptions& options, std::size_t piece = 1000) {
    auto modem = std::make_unique<sim::SimulatedModem>(std::make_unique<EchoLine>(controller), options);
    port = std::make_unique<ModemPort>(std::make_unique<LinePort>(std::move(modem), pacer, piece), settings, pacer);
    return *port;
  }

  VirtualPacer pacer;
  EchoLine::State controller;
  ModemSettings settings{.init = "AT&F", .number = "0,12345"};
  std::unique_ptr<ModemPort> port;
};

TEST_F(ModemPortTest, DialsCarriesBytesAndHangsUp) {
  for (const std::size_t piece : {1U, 1000U}) {  // the modem's answers arrive letter by letter, or whole
    auto& modem = Make({}, piece);
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    EXPECT_EQ(modem.Description(), "COM3, 115200 8N1, modem 0,12345");
    controller.waiting.clear();
    ASSERT_TRUE(kvtest::WriteAll(modem, "/01IDEE\r"));
    EXPECT_THAT(kvtest::ReadFrom(modem, 9), HasSubstr("/01IDEE\r"));
    modem.Close();
    EXPECT_FALSE(controller.isConnected);
    EXPECT_THAT(controller.taken, testing::EndsWith("+++"));  // hung up by command, not by pulling the line
  }
}

TEST_F(ModemPortTest, SaysWhatBecameOfTheCall) {
  struct {
    DialResult result;
    const char* happened;
  } const cases[] = {
      {DialResult::Busy, "0,12345 is engaged"},
      {DialResult::NoCarrier, "the call to 0,12345 found no modem"},
      {DialResult::NoDialTone, "the modem hears no dial tone"},
      {DialResult::NoAnswer, "0,12345 does not answer"},
  };
  for (const auto& entry : cases) {
    const auto opened = Make({.result = entry.result}).Open(kLimit);
    ASSERT_FALSE(opened.has_value()) << entry.happened;
    EXPECT_EQ(opened.error().happened, entry.happened);
    EXPECT_NE(opened.error().cure, "");
    EXPECT_FALSE(port->IsOpen());
  }
}

TEST_F(ModemPortTest, EndsACallThatTakesTooLong) {
  const struct {
    Duration limit, stop, end;
    const char* happened;
  } cases[] = {
      {kLimit, seconds(99), settings.dialTimeOut, "does not answer"},
      {seconds(10), seconds(99), seconds(10), "does not answer"},
      {kLimit, seconds(5), seconds(5), "was stopped"},
  };
  for (const auto& entry : cases) {
    const auto start = pacer.Now();
    pacer.After(entry.stop, [this] { pacer.RequestStop(); });
    const auto opened = Make({.dialTime = std::chrono::hours(1)}).Open(entry.limit);
    ASSERT_FALSE(opened.has_value());
    EXPECT_THAT(opened.error().happened, HasSubstr(entry.happened));
    EXPECT_GE(pacer.Now() - start, entry.end);
    EXPECT_LT(pacer.Now() - start, entry.end + seconds(2));
    pacer.Sleep(seconds(100));
    pacer.ClearStop();
  }
}

TEST_F(ModemPortTest, NamesTheCommandThatTheModemDoesNotKnowOrLeavesUnanswered) {
  settings.number = "nobody";  // no digit in it
  const auto refused = Make({}).Open(kLimit);
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().happened, "the modem refused the command \"ATDTnobody\"");

  controller.isConnected = true;
  auto dead = std::make_unique<LinePort>(std::make_unique<EchoLine>(controller), pacer, 1000);
  const auto silent = ModemPort(std::move(dead), settings, pacer).Open(kLimit);
  ASSERT_FALSE(silent.has_value());
  EXPECT_EQ(silent.error().happened, "the modem does not answer \"ATZ\"");
}

TEST_F(ModemPortTest, IsLostWhenTheCarrierIs) {
  for (const std::size_t piece : {1U, 1000U}) {
    auto& modem = Make({}, piece);
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    controller.waiting = "data\r\nNO CARRIER\r\n,";  // the other end's own bytes
    EXPECT_EQ(kvtest::ReadFrom(modem, 19).size(), 19U);
    EXPECT_TRUE(modem.IsOpen());
    controller.waiting = "half a re";
    controller.isConnected = false;
    EXPECT_THAT(kvtest::ReadFrom(modem, 1000), HasSubstr("half a re"));
    EXPECT_FALSE(modem.IsOpen());
    EXPECT_EQ(modem.LossReason().happened, "the telephone connection to 0,12345 broke");
  }
}

}  // namespace
}  // namespace kv
