#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;

// Commands on files of their own.
struct Regions : ::testing::Test {
  CommandFixture fixture;

  void Axt(const std::string& rows, const std::string& family = "Aurex") {
    fixture.home.Put("r.axt", "Version 100\r\n" + family + "\r\n" + rows + "\r\n");
  }
  Result Read(const std::string& model, const std::string& more = "") {
    return fixture.On(model, "regions read @r.axt " + more);
  }
  Result Write(const std::string& model, const std::string& values, const std::string& more = "--yes") {
    fixture.home.Put("v.csv", values);
    return fixture.On(model, "regions write @r.axt @v.csv " + more);
  }
  Result Watch(const std::string& more) { return fixture.On("Q50", "watch @r.axt " + more); }
};

TEST_F(Regions, AreReadAsTheViewShowsThemAndWrittenAsOneLineAnOperand) {
  Axt("2\tMI\t0\t1\tTank \xFC\t8 BIT\tHEX\told\t\r\n13\tTIMER PRESET\t3\t3\t\t\t\t\t\r\n1\tMB\t4\t6\t\t\t\t\t\r\n");
  const std::string heading = "Operand Type,Address,Value\n";
  const std::string values = "MI,0,4660\nMI,1,22136\nTIMER PRESET,3,00:00:01.50\nMB,4,1\n";
  const Result written = Write("K220-22-R1", heading + values + "mb, 6 ,1\n");
  EXPECT_EQ(written.exit, 0) << written.err;
  EXPECT_THAT(written.err, HasSubstr("1 operand without a value in "));
  EXPECT_THAT(written.err, HasSubstr("Written and read back: 5 values."));
  EXPECT_EQ(written.out, "");

  const Result read = Read("K220-22-R1");
  EXPECT_EQ(read.exit, 0) << read.err;
  EXPECT_EQ(read.out, "MI\t0\t1\tTank \xC3\xBC\t12 34 56 78\nTIMER PRESET\t3\t3\t\t00:00:01.50\nMB\t4\t6\t\t1 0 1\n");
  EXPECT_EQ(Read("K220-22-R1", "--csv").out, heading + values + "MB,5,0\nMB,6,1\n");
  EXPECT_THAT(Write("K220-22-R1", "Operand Type,0,1\r\nMI,,22136\r\nx,y\r\nTIMER PRESET\r\n").err,
              AllOf(HasSubstr("Left out: line 3 (\"y\" is no value)"), HasSubstr("read back: 1 value.")))
      << "as the view exports it";
  EXPECT_THAT(Read("K220-22-R1", "--json").out, HasSubstr("\"text\": \"12 34 56 78\""));
  EXPECT_EQ(Write("K220-22-R1", values, "--yes --json").out,
            "{\n  \"written\": 4,\n  \"compared\": 4,\n  \"missing\": 2\n}\n");
}

TEST_F(Regions, ThatCannotBeUsedAreRefusedBeforeAnyOperandIsAskedFor) {
  const char* const mi = "2\tMI\t0\t9\t\r\n";
  const char* const timers = "13\tTIMER PRESET\t0\t1\t\r\n";
  const char* const pastEnd = "remove the region, and add it anew with addresses from 0 to 2047; save the file again";
  // clang-format off
  const std::tuple<const char*, const char*, const char*, int, const char*, const char*> rows[] = {
      {"Q50",   mi,                         nullptr,               6, "badFile",    "The file applies to a different controller model"},
      {"Aurex", "2\tMI\t2048\t2048\t\r\n",  nullptr,               4, "notFit",     pastEnd},
      {"Aurex", mi,                         "MI,0,1\nMI,1,1.5\n",  6, "outOfRange", "line 2: MI 1 is \"1.5\""},
      {"Aurex", mi,                         "MI,0,\n",             6, "badFile",    "line 1: MI 0 has no value"},
      {"Aurex", timers,                     "TIMER PRESET,1,1\n",  6, "badFile",    "may be a number of days"},
      {"Aurex", mi,                         "MI,0,1\nMI,10,1\n",   6, "badFile",    "line 2: MI 10 is in none of the regions"},
      {"Aurex", mi,                         "MI,x,1\n",            6, "badFile",    "\"x\" is no operand address"},
  };
  // clang-format on
  for (const auto& [family, regions, values, exit, name, message] : rows) {
    Axt(regions, family);
    fixture.home.Put("v.csv", values == nullptr ? "" : values);
    const char* const line = values == nullptr ? "--link sim:K220-22-R1 regions read @r.axt"
                                               : "--link sim:K220-22-R1 regions write @r.axt @v.csv --yes";
    EXPECT_EQ(fixture.ExpectFailure({line, exit, name, message}).trace, "");
  }
  Axt("19\tXB\t0\t9\t\r\n");
  fixture.options.osVersion = "2.90";
  fixture.ExpectFailure(
      {"--link sim:K330 regions read @r.axt", 4, "notFit", "Some of the defined regions are not supported by the O/S"});
}

TEST_F(Regions, AreWrittenAfterAskingAndReadOnlyOnesAside) {
  Axt("7\tSB\t0\t1\t\r\n2\tMI\t0\t1\t\r\n8\tSI\t0\t0\t\r\n", "Q50");
  const Result declined = Write("Q50", "MI,0,5\nSB,0,1\n", "");
  EXPECT_EQ(declined.exit, 1);
  EXPECT_THAT(declined.err, HasSubstr("Write 1 value to Simulated Q50?"));
  EXPECT_THAT(declined.err, HasSubstr("nothing was written"));
  EXPECT_THAT(declined.trace, Not(HasSubstr(": write ")));

  fixture.input.lines.emplace(1, "y");
  const Result written = Write("Q50", "MI,0,5\nSB,0,1\n", "");
  EXPECT_EQ(written.exit, 0);
  const std::string message = "Values cannot be written to some of the defined regions.";
  EXPECT_THAT(written.err, HasSubstr(message));
  EXPECT_EQ(written.err.find(message), written.err.rfind(message));
  EXPECT_EQ(fixture.On("Q50", "read MI 0 1").out, "0\t5\n1\t0\n");

  const Result none = Write("Q50", "SB,0,1\n");
  EXPECT_EQ(none.exit, 0);
  EXPECT_THAT(none.trace, Not(HasSubstr(": write ")));

  fixture.input.onRead = [&] { fixture.pacer.RequestStop(); };
  EXPECT_EQ(Write("Q50", "MI,0,5\n", "").exit, 130) << "Ctrl-C at the question";
}

TEST_F(Regions, ThatThisModelCannotBeAskedForAreNamedAndStopNoOthers) {
  Axt("6\tDBI\t0\t9\t\r\n2\tMI\t0\t0\t\r\n", "Q50");
  const Result read = Read("AurexQ50");
  EXPECT_EQ(read.exit, 0);
  EXPECT_EQ(read.out, "DBI\t0\t9\t\t\nMI\t0\t0\t\t     0\n");
  EXPECT_THAT(read.err, HasSubstr("DBI 0..9 cannot be read from a controller of the model AurexQ50."));
  EXPECT_THAT(Write("AurexQ50", "DBI,0,1\nMI,0,1\n").err, HasSubstr("Written: 2 values. Not compared: 1, because "));
  const Result watched = fixture.On("AurexQ50", "watch @r.axt --for 1");
  EXPECT_EQ(watched.exit, 0) << watched.err;
  EXPECT_THAT(watched.err, HasSubstr("DBI 0..9 cannot be read"));
}

TEST_F(Regions, AreWatchedUntilEnoughHasChanged) {
  Axt("2\tMI\t99\t101\t\r\n1\tMB\t0\t0\t\r\n", "Q50");  // MI 100 and 101 move by themselves
  const Result counted = Watch("--count 2");
  EXPECT_EQ(counted.exit, 0) << counted.err;
  EXPECT_EQ(counted.err, "");
  EXPECT_THAT(counted.out, MatchesRegex("2024-01-01 00:00:\\w\\w\tMI\t100\t\\w+\t\\w+\n"
                                        "2024-01-01 00:00:\\w\\w\tMI\t10\\w\t\\w+\t\\w+\n"));
  const std::string one = Watch("--count 1 --json --every 2000").out;
  EXPECT_THAT(
      one, MatchesRegex("\\{\"time\":\".+\",\"type\":\"MI\",\"address\":100,\"old\":\"\\w+\",\"new\":\"\\w+\"\\}\n"));
  EXPECT_EQ(std::ranges::count(one, '\n'), 1);

  const Instant start = fixture.pacer.Now();
  EXPECT_EQ(Watch("--for 10 --every 1000").exit, 0);
  EXPECT_GE(fixture.pacer.Now() - start, std::chrono::seconds(10));
  EXPECT_LE(fixture.pacer.Now() - start, std::chrono::seconds(12));

  fixture.outIsBroken = true;
  const Result broken = Watch("--for 10");
  EXPECT_EQ(broken.exit, 1);
  EXPECT_THAT(broken.err, HasSubstr("the output takes no more"));
  fixture.outIsBroken = false;
  fixture.pacer.After(std::chrono::milliseconds(700), [&] { fixture.pacer.RequestStop(); });
  const Result stopped = Watch("");
  EXPECT_EQ(stopped.exit, 130);
  EXPECT_THAT(stopped.err, HasSubstr("stopped by Ctrl-C"));
  fixture.pacer.ClearStop();
  Axt("", "Q50");
  EXPECT_THAT(Watch("").err, HasSubstr("nothing to watch"));
}

TEST_F(Regions, AreWatchedAcrossALostLink) {
  Axt("2\tMI\t100\t100\t\r\n", "Q50");
  fixture.options.faults = {"lost:on=RO,nth=3,away=20000"};
  const Result lost = Watch("--for 120");
  EXPECT_EQ(lost.exit, 0) << lost.err;
  EXPECT_THAT(lost.err, HasSubstr("The watch goes on when it answers."));
  EXPECT_EQ(lost.err.find("The watch goes on"), lost.err.rfind("The watch goes on")) << "told once";
  EXPECT_THAT(lost.err, HasSubstr("The controller answers again."));
}

TEST_F(Regions, OfAnotherControllerThatAnswersInsteadAreNotWatched) {
  Axt("2\tMI\t100\t101\t\r\n", "Q50");
  fixture.options.faults = {"lost:on=RO,nth=3,away=2000"};
  fixture.pacer.After(std::chrono::milliseconds(2500), [&] {
    fixture.options.serialNumber = 4711;
    fixture.ReplaceController("Q50");
  });
  const Result result = Watch("--for 60 --every 1000");
  EXPECT_EQ(result.exit, 7) << result.err;
  EXPECT_THAT(result.err, HasSubstr("another controller answered: Q50-2-R34, serial number 4711 instead of Q50"));
  EXPECT_THAT(result.err, HasSubstr("What to do: connect the right controller"));
  EXPECT_THAT(result.err, Not(HasSubstr("The controller answers again")));
}

}  // namespace
}  // namespace kv::test
