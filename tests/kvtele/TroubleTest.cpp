#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/SettingsFile.h"
#include "KvCmDrv1/ports/ModemPort.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "simulator/SimulatedModem.h"
#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

// 150 words: three requests.
std::vector<std::string> LongWrite(const char* type = "DBI") {
  std::vector<std::string> arguments{"write", type, "0"};
  arguments.resize(3 + 150, "1");
  return arguments;
}

TEST(Trouble, EndsWithTheExitCodeThatTellsWhatToDo) {
  const std::tuple<const char*, std::vector<std::string>, int, const char*> rows[] = {
      {"lie:on=WO", {"write", "MI", "7", "5"}, 5, "MI 7 reads 0 instead of 5"},
      {"busy:on=RO", {"read", "MI", "0"}, 4, "busy"},
      {"refuse:on=WO,code=06", {"write", "MI", "0", "1"}, 4, "nothing was written"},
      {"refuse:on=WO,code=06,nth=3", LongWrite(), 4, "DBI 0..119 had been written before"},
      {"noreply:on=RO", {"read", "MI", "0"}, 7, "no reply"},
      {"noreply:on=ID", {"read", "MI", "0"}, 3, "no reply"},
      {"lost:on=WO,nth=2,dir=in,away=600000", LongWrite(), 7,
       "DBI 60..119 may have been written; DBI 0..59 had been written before"},
      {"noreply:on=RO", {"write", "MI", "0", "1"}, 7, "MI 0 was written, but could not be read back: no reply"},
  };
  for (const auto& [fault, arguments, exit, message] : rows) {
    SCOPED_TRACE(fault);
    CommandBench bench;
    bench.options.faults = {fault};
    const Result result = bench.On("Q50", arguments);
    EXPECT_EQ(result.exit, exit);
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_EQ(result.out, "");
  }
}

TEST(Write, OfWhatCannotBeReadBackSaysSo) {
  CommandBench bench;
  const Result written = bench.On("Q50", {"--model", "AurexQ50", "write", "DBI", "0", "7", "--json"});
  EXPECT_EQ(written.exit, 0);
  EXPECT_THAT(written.err, HasSubstr("Written: DBI 0. It was not compared"));
  EXPECT_THAT(written.out, HasSubstr("\"values\": null"));
  EXPECT_EQ(bench.On("Q50", {"--model", "AurexQ50", "read", "DBI", "0"}).exit, 4);
  EXPECT_EQ(bench.On("Q50", {"read", "DBI", "0"}).out, "0\t7\n");
}

TEST(Password, IsGivenOrAskedForWhereSomebodySits) {
  CommandBench bench;
  bench.options.password = "1234";
  const Result without = bench.On("Q50", {"write", "MI", "7", "5"});
  EXPECT_EQ(without.exit, 4);
  EXPECT_THAT(without.err, HasSubstr("give the controller's password with --password"));
  EXPECT_THAT(bench.On("Q50", {"write", "MI", "7", "5", "--json"}).out, HasSubstr("\"code\": \"passwordNeeded\""));

  const Result wrong = bench.On("Q50", {"write", "MI", "7", "5", "--password", "0000"});
  EXPECT_EQ(wrong.exit, 4);
  EXPECT_THAT(wrong.err, HasSubstr("the password is wrong"));
  EXPECT_EQ(bench.On("Q50", {"read", "MI", "7"}).out, "7\t0\n");
  EXPECT_EQ(bench.On("Q50", {"write", "MI", "7", "5", "--password", "1234"}).exit, 0);

  bench.input.lines = std::deque<std::string>{"0000", "1234"};
  EXPECT_EQ(bench.On("Q50", {"write", "MI", "7", "6"}).exit, 0);
  EXPECT_EQ(bench.On("Q50", {"read", "MI", "7"}).out, "7\t6\n");
}

TEST(SerialNumber, OfAnotherControllerIsRefusedBeforeAnythingIsRead) {
  CommandBench bench;
  const Result other = bench.On("Q50", {"--serial-number", "4711", "read", "MI", "0", "--json"});
  EXPECT_EQ(other.exit, 4);
  EXPECT_THAT(other.err, HasSubstr("another controller answered: Q50-2-R34, serial number "));
  EXPECT_THAT(other.err, HasSubstr(" instead of serial number 4711"));
  EXPECT_THAT(other.err, HasSubstr("or change the serial number that the link is set to"));
  EXPECT_EQ(other.trace.find("/01RO"), std::string::npos);
  const std::string found = other.err.substr(other.err.find("serial number ") + 14);
  EXPECT_EQ(bench.On("Q50", {"--serial-number", found.substr(0, found.find(' ')), "read", "MI", "0"}).exit, 0);
}

TEST(Watch, DialsALostCallAgainAsOftenAsItMay) {
  const std::tuple<const char*, std::vector<std::string>, int, const char*> rows[] = {
      {"lost:on=RO,nth=3", {}, 0, "Dialling again in 10 s (1 of 3).\nConnected to "},
      {"lost:on=RO,nth=3,away=900000", {}, 7, "0,123 does not answer; no more calls after 3 in a row"},
      {"lost:on=RO,every=3", {"--redials", "5"}, 7, "broke; no more calls after 5 in a row"},
      {"lost:on=RO,nth=3", {"--redials", "0"}, 7, "--redials lets the watch dial again by itself"},
  };
  for (const auto& [fault, more, exit, message] : rows) {
    SCOPED_TRACE(message);
    CommandBench bench;
    sim::SimulatorOptions options;
    options.model = "Q50";
    options.faults = {fault};
    const auto controller = sim::SimulatedController::Create(options).value();
    bench.makePort = [&](const LinkSettings& settings, Pacer& pacer, ListeningSocket*) {
      auto modem = std::make_shared<sim::SimulatedModem>(controller->NewLine(), sim::ModemOptions{});
      return std::make_unique<ModemPort>(std::make_unique<SimulatedPort>(modem, "COM3", pacer), settings.modem, pacer);
    };
    const auto file = bench.home.Put("plant.axt", "Version 100\r\nQ50\r\n2\tMI\t0\t1\t\t\t\t\t\r\n\r\n");
    std::vector<std::string> arguments{"--model", "Q50", "watch", file.string(), "--for", "600", "--every", "1000"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    LinkSettings link;
    link.transport = Transport::Modem;
    link.serialPort = "COM3";
    link.modem.number = "0,123";
    EXPECT_TRUE(SaveSettings(bench.home.Path() / "Sessions" / "Default", link));
    const Result result = bench.Run(arguments);
    EXPECT_EQ(result.exit, exit) << result.err;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_THAT(result.trace, HasSubstr("ATDT0,123"));
  }
}

// A port that partners call: the first one says nothing, the second is the controller.
class CalledPort final : public Port {
 public:
  CalledPort(std::shared_ptr<InProcessLine> line, Pacer& pacer) : mPort(std::move(line), "", pacer) {}
  std::expected<void, PortError> Open(Duration limit) override {
    ++mCalls;
    return mPort.Open(limit);
  }
  void Close() override { mPort.Close(); }
  bool IsOpen() const override { return mPort.IsOpen(); }
  Result Write(std::string_view& bytes, Duration slice) override {
    if (mCalls > 1) return mPort.Write(bytes, slice);
    bytes = {};
    return Result::Done;
  }
  Result Read(std::string& buffer, Duration slice) override { return mPort.Read(buffer, slice); }
  const PortError& LossReason() const override { return mPort.LossReason(); }
  Duration ByteTime() const override { return {}; }
  bool SetBaudRate(int) override { return false; }
  std::string Description() const override { return "caller " + std::to_string(mCalls); }
  bool IsCalled() const override { return true; }

 private:
  SimulatedPort mPort;
  int mCalls = 0;
};

TEST(DialIn, WhoWasDroppedIsToldThoughTheControllerCame) {
  CommandBench bench;
  sim::SimulatorOptions options;
  options.model = "Q50";
  const auto controller = sim::SimulatedController::Create(options).value();
  bench.makePort = [&](const LinkSettings&, Pacer& pacer, ListeningSocket*) {
    return std::make_unique<CalledPort>(controller->NewLine(), pacer);
  };
  const Result result = bench.Run({"--link", "listen:20302", "read", "MI", "0"});
  EXPECT_EQ(result.exit, 0) << result.err;
  EXPECT_EQ(result.err, "A caller was dropped: caller 1: it does not answer\n");
}

TEST(CtrlC, EndsEveryCommandAndSaysHowFarItWas) {
  CommandBench bench;
  bench.pacer.RequestStop();
  EXPECT_EQ(bench.On("Q50", {"identify"}).exit, 130);
  bench.pacer.ClearStop();

  // Stopped while the second request waits for a reply that is late.
  bench.options.faults = {"late:on=WO,nth=2,ms=900"};
  bench.pacer.After(std::chrono::milliseconds(400), [&] { bench.pacer.RequestStop(); });
  const Result result = bench.On("Q58", LongWrite("MI"));
  EXPECT_EQ(result.exit, 130);
  EXPECT_THAT(result.err, HasSubstr("MI 0..59 had been written before"));
  EXPECT_EQ(result.out, "");
}

TEST(Output, ThatCannotBeWrittenFailsWithoutHarm) {
  CommandBench bench;
  bench.outIsBroken = true;
  bench.serialPorts = {{"COM3", "COM3", "", ""}};
  const Result result = bench.Run({"ports"});
  EXPECT_EQ(result.exit, 1);
  EXPECT_THAT(result.err, HasSubstr("could not be written"));
}

}  // namespace
}  // namespace kv::test
