#include "KvCmDrv1/ports/ModemPort.h"

#include <gmock/gmock.h>

#include "KvCmDrv1/ports/SimulatedPort.h"
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

// Hands over what another line sends, at most `piece` bytes at once.
class PieceLine final : public InProcessLine {
 public:
  PieceLine(std::unique_ptr<InProcessLine> line, std::size_t piece) : mLine(std::move(line)), mPiece(piece) {}

  bool Connect(Instant now) override { return mLine->Connect(now); }
  void Disconnect(Instant now) override { mLine->Disconnect(now); }
  bool IsConnected() const override { return mLine->IsConnected() || !mWaiting.empty(); }
  void Write(std::string_view bytes, Instant now) override { mLine->Write(bytes, now); }
  std::string Read(Instant now) override {
    mWaiting += mLine->Read(now);
    const std::string bytes = mWaiting.substr(0, mPiece);
    mWaiting.erase(0, mPiece);
    return bytes;
  }
  std::optional<Instant> NextEvent() const override { return mLine->NextEvent(); }

 private:
  std::unique_ptr<InProcessLine> mLine;
  std::size_t mPiece;
  std::string mWaiting;
};

class ModemPortTest : public testing::Test {
 protected:
  ~ModemPortTest() override {
    port.reset();
    test::ExpectAsRecorded([this] { return dialogue; });
  }
  // Keeps what it says and hears, and when.
  ModemPort& Heard(std::unique_ptr<ModemPort> made) {
    port = std::move(made);
    port->OnDialogue = [this](Port::Side side, std::string_view bytes) {
      const auto now = std::to_string(pacer.Now().time_since_epoch() / milliseconds(1));
      dialogue += now + (side == Port::Side::Said ? " --> " : " <-- ") + test::Shown(bytes) + "\n";
    };
    return *port;
  }
  std::unique_ptr<Port> PortOn(std::shared_ptr<InProcessLine> line) {
    return std::make_unique<SimulatedPort>(std::move(line), "COM3", pacer);
  }
  ModemPort& Make(const sim::ModemOptions& options, std::size_t piece = 1000) {
    auto modem = std::make_unique<sim::SimulatedModem>(std::make_unique<kvtest::PartnerLine>(controller), options);
    return Heard(
        std::make_unique<ModemPort>(PortOn(std::make_unique<PieceLine>(std::move(modem), piece)), settings, pacer));
  }

  VirtualPacer pacer;
  kvtest::Partner controller{.echoes = true};
  ModemSettings settings{.init = "AT&F", .number = "0,12345"};
  std::string dialogue;
  std::unique_ptr<ModemPort> port;
};

TEST_F(ModemPortTest, DialsAndHangsUp) {
  for (const std::size_t piece : {1U, 1000U}) {  // the modem's answers arrive letter by letter, or whole
    auto& modem = Make({}, piece);
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    ASSERT_TRUE(modem.Open(kLimit).has_value()) << "also where it is open";
    EXPECT_EQ(modem.Description(), "Simulated COM3, modem 0,12345");
    modem.Close();  // after a second of silence before the escape, and one behind it
    EXPECT_FALSE(controller.isConnected);
    EXPECT_THAT(controller.taken, testing::EndsWith("+++"));  // hung up by command, not by pulling the line
    const Instant closed = pacer.Now();
    modem.Close();
    EXPECT_EQ(pacer.Now(), closed) << "there is no call any more";
  }
}

// A port on which a modem says what the test wants to each command, or which takes no byte at all.
struct ScriptedPort final : Port {
  explicit ScriptedPort(Pacer& turns) : pacer(turns) {}
  std::expected<void, PortError> Open(Duration) override {
    *isTaken = true;
    return {};
  }
  void Close() override { *isTaken = false; }
  bool IsOpen() const override { return true; }
  Result Write(std::string_view& bytes, Duration slice) override {
    if (answers.empty()) return Wait(slice);
    bytes.remove_prefix(1);  // its buffer has no room for more
    if (!bytes.empty()) return Result::Done;
    waiting += answers.front();
    answers.erase(answers.begin());
    return Result::Done;
  }
  Result Read(std::string& buffer, Duration slice) override {
    if (waiting.empty()) return Wait(slice);
    buffer += std::exchange(waiting, {});
    return Result::Done;
  }
  Result Wait(Duration slice) const {
    pacer.Sleep(slice);
    return Result::Nothing;
  }
  const PortError& LossReason() const override { return loss; }
  Duration ByteTime() const override { return {}; }
  bool SetBaudRate(int) override { return false; }
  std::string Description() const override { return "COM3"; }

  Pacer& pacer;
  std::shared_ptr<bool> isTaken = std::make_shared<bool>();
  std::vector<std::string> answers;  // to ATZ, the init text, ATE0 and the dialling
  std::string waiting;
  PortError loss;
};

TEST_F(ModemPortTest, TakesTheWordsOfTheModemOutOfWhateverElseItSays) {
  struct Row {
    std::vector<std::string> answers;
    const char* happened;
  };
  const Row rows[] = {
      {{"~\r\nOK\r\n", "OK\r\n", "OK\r\n", "RING\r\nCONNECT\r\n"}, ""},
      {{"00123456789\r\nOK\r\n", "OK\r\n", "ERROR\r\n", "CONNECT 9600\r\n"}, ""},
      {{"OK\r\nERROR\r\n", "OK\r\n", "OK\r\n", "CONNECT\r\n"}, ""},  // what was said before is no answer
      {{"OK\r\n", "OK\r\n", "OK\r\n", "RRING\r\nNO CARRIER\r\n"}, "the call to 0,12345 found no modem"},
      {{"OK\r\n", "OK\r\n", ""}, "the modem does not answer \"ATE0\", although it has answered before"},
      {{"OK\r\n", ""}, "the modem does not answer \"AT&F\", although it has answered before"},
      {{"OK\r\n", "ERROR\r\n"}, "the modem refused the command \"AT&F\""},
      {{"123\r\nOK\n", "12 \r\rOK\r", "OK\n\n", "NO DIAL TONE\r"}, "the modem hears no dial tone"},
      {{"OK\r\n", "OK\r\n", "0\r\n"}, "the modem answers \"ATE0\" with a number instead of a word"},
      {{}, "the modem does not answer \"ATZ\""},
  };
  for (const auto& [answers, happened] : rows) {
    port.reset();
    auto line = std::make_unique<ScriptedPort>(pacer);
    line->answers = answers;
    const Instant start = pacer.Now();
    const auto turns = pacer.TurnCount();
    const auto isTaken = line->isTaken;
    const auto opened = Heard(std::make_unique<ModemPort>(std::move(line), settings, pacer)).Open(kLimit);
    if (!opened) dialogue += kvtest::Words(opened.error());
    EXPECT_EQ(opened ? "" : opened.error().happened, happened);
    EXPECT_EQ(*isTaken, opened.has_value()) << "others may use the modem again";
    const bool isSilent = std::string_view(happened).starts_with("the modem does not answer");
    EXPECT_EQ(pacer.Now() - start, isSilent ? seconds(answers.empty() ? 6 : 3) : seconds(0)) << "three a command";
    if (!answers.empty()) continue;
    EXPECT_GT(pacer.TurnCount() - turns, 100) << "the window is painted meanwhile";
  }
}

TEST_F(ModemPortTest, AStopEndsTheHangUpAndDropsTheLine) {
  auto& modem = Make({});
  ASSERT_TRUE(modem.Open(kLimit).has_value());
  pacer.After(milliseconds(300), [this] { pacer.RequestStop(); });
  const Instant start = pacer.Now();
  modem.Close();
  EXPECT_LT(pacer.Now() - start, milliseconds(350));
  EXPECT_FALSE(modem.IsOpen() || controller.isConnected);
}

TEST_F(ModemPortTest, SaysWhatBecameOfTheCall) {
  for (const auto result : {DialResult::Busy, DialResult::NoCarrier, DialResult::NoDialTone, DialResult::NoAnswer}) {
    (void)kvtest::WhyNot(Make({.result = result}), kLimit);
    EXPECT_FALSE(port->IsOpen());
  }
}

TEST_F(ModemPortTest, EndsACallThatTakesTooLong) {
  const std::tuple<Duration, Duration, Duration, const char*> cases[] = {
      {kLimit, seconds(99), settings.dialTimeOut, "does not answer"},
      {seconds(10), seconds(99), seconds(10), "does not answer"},
      {kLimit, seconds(5), seconds(5), "was stopped"},
  };
  for (const auto& [limit, stop, end, happened] : cases) {
    const auto start = pacer.Now();
    const auto turns = pacer.TurnCount();
    pacer.After(stop, [this] { pacer.RequestStop(); });
    EXPECT_THAT(kvtest::WhyNot(Make({.dialTime = std::chrono::hours(1)}), limit).happened, HasSubstr(happened));
    EXPECT_GE(pacer.Now() - start, end);
    EXPECT_LT(pacer.Now() - start, end + seconds(2));
    EXPECT_GT(pacer.TurnCount() - turns, end / milliseconds(50)) << "the window is painted meanwhile";
    pacer.Sleep(seconds(100));
    pacer.ClearStop();
  }
}

TEST_F(ModemPortTest, WakesAModemWhoseProfileIsQuietOrAnswersWithNumbers) {
  using enum sim::ModemAnswers;
  const std::tuple<sim::ModemAnswers, const char*, const char*, const char*> rows[] = {
      {None, "AT&F", "1", ""},
      {Numbers, "", "1", ""},
      {Words, "", "nobody", "the modem refused the command \"ATDTnobody\""},  // no digit in it
      {Words, "ATV0", "1", "the modem answers \"ATV0\" with a number instead of a word"},
      {Words, "ATQ1", "1", "the modem does not answer \"ATQ1\", although it has answered before"},
  };
  for (const auto& [answers, init, number, happened] : rows) {
    settings.init = init;
    settings.number = number;
    const auto opened = Make({.answers = answers}).Open(kLimit);
    EXPECT_EQ(opened ? "" : opened.error().happened, happened) << init;
  }
}

TEST_F(ModemPortTest, TellsItsDialogueWithoutThePinOfAMobileCard) {
  settings.init = "AT+CPIN=1234;+cpwd=\"SC\",\"1234\";+CLCK=\"SC\",1,\"1234\";+CGAUTH=1,2,\"key\";+CREG?";
  for (const bool isPulse : {false, true}) {
    settings.isPulse = isPulse;
    auto& modem = Make({});
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    modem.Close();
  }
  EXPECT_EQ(dialogue.find("1234;"), std::string::npos);
  EXPECT_NE(dialogue.find("AT+CPIN=****;+cpwd=***********;"), std::string::npos) << dialogue;
  settings.init = "AT+CPIN=1234;+UNKNOWN";
  auto line = std::make_unique<ScriptedPort>(pacer);
  line->answers = {"OK\r\n", "ERROR\r\n"};
  EXPECT_THAT(kvtest::WhyNot(Heard(std::make_unique<ModemPort>(std::move(line), settings, pacer))).happened,
              HasSubstr("AT+CPIN=****;"));
}

TEST_F(ModemPortTest, IsLostWhenTheCarrierIs) {
  for (const std::size_t piece : {1U, 1000U}) {
    auto& modem = Make({}, piece);
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    controller.given = "data\r\nNO CARRIER\r\n,";  // the other end's own bytes
    EXPECT_EQ(kvtest::ReadFrom(modem, 19).size(), 19U);
    EXPECT_TRUE(modem.IsOpen());
    controller.given = "half a re";
    controller.isConnected = false;
    EXPECT_THAT(kvtest::ReadFrom(modem, 1000), HasSubstr("half a re"));
    EXPECT_FALSE(modem.IsOpen());
    dialogue += kvtest::Words(modem.LossReason());
    EXPECT_EQ(modem.LossReason().happened, "the telephone connection to 0,12345 broke");
  }
}

// Behind a modem that echoes, the echo of a request would come back as if a controller had sent it.
TEST_F(ModemPortTest, NoticesACallThatWasLostBetweenTwoRequests) {
  for (const std::size_t piece : {1U, 1000U}) {
    settings.init = "ATE1";
    auto& modem = Make({}, piece);
    ASSERT_TRUE(modem.Open(kLimit).has_value());
    controller.isConnected = false;
    controller.taken.clear();
    pacer.Sleep(seconds(10));
    std::string_view request = "/01IDEE\r";
    auto result = Port::Result::Done;
    for (int i = 0; i < 100 && result != Port::Result::Lost && !request.empty(); ++i) {
      result = modem.Write(request, milliseconds(5));
    }
    EXPECT_EQ(result, Port::Result::Lost);
    EXPECT_EQ(controller.taken, "");
    EXPECT_EQ(modem.LossReason().happened, "the telephone connection to 0,12345 broke");
  }
}

}  // namespace
}  // namespace kv
