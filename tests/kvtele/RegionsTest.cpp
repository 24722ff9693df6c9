#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/PathText.h"
#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

// Commands on files of their own.
class Regions : public ::testing::Test {
 protected:
  std::string Put(const char* name, const std::string& content) { return Utf8FromPath(bench.home.Put(name, content)); }
  std::string Axt(const std::string& rows, const std::string& family = "Aurex") {
    return Put("regions.axt", "Version 100\r\n" + family + "\r\n" + rows + "\r\n");
  }
  Result Read(const std::string& model, std::vector<std::string> more = {}) {
    more.insert(more.begin(), {"regions", "read", Utf8FromPath(bench.home.Path() / "regions.axt")});
    return bench.On(model, more);
  }
  Result Write(const std::string& model, const std::string& values, std::vector<std::string> more = {"--yes"}) {
    const std::string file = Put("values.csv", values);
    more.insert(more.begin(), {"regions", "write", Utf8FromPath(bench.home.Path() / "regions.axt"), file});
    return bench.On(model, more);
  }
  Result Watch(std::vector<std::string> more) {
    more.insert(more.begin(), {"watch", Utf8FromPath(bench.home.Path() / "regions.axt")});
    return bench.On("Q50", more);
  }

  CommandBench bench;
};

TEST_F(Regions, AreReadAsTheViewShowsThemAndWrittenAsOneLineAnOperand) {
  Axt("2\tMI\t0\t1\tTank \xFC\t8 BIT\tHEX\told\t\r\n13\tTIMER PRESET\t3\t3\t\t\t\t\t\r\n1\tMB\t4\t6\t\t\t\t\t\r\n");
  const Result written = Write("K220-22-R1",
                               "Operand Type,Address,Value\nMI,0,4660\nMI,1,22136\nTIMER PRESET,3,00:00:01.50\nMB,4,1\n"
                               "mb, 6 ,1\n");
  EXPECT_EQ(written.exit, 0) << written.err;
  EXPECT_THAT(written.err, HasSubstr("1 operand without a value in "));
  EXPECT_THAT(written.err, HasSubstr("Written and read back: 5 values."));
  EXPECT_EQ(written.out, "");

  const Result read = Read("K220-22-R1");
  EXPECT_EQ(read.exit, 0) << read.err;
  EXPECT_EQ(read.out, "MI\t0\t1\tTank \xC3\xBC\t12 34 56 78\nTIMER PRESET\t3\t3\t\t00:00:01.50\nMB\t4\t6\t\t1 0 1\n");
  const std::string values = Read("K220-22-R1", {"--csv"}).out;
  EXPECT_EQ(values,
            "Operand Type,Address,Value\nMI,0,4660\nMI,1,22136\nTIMER PRESET,3,00:00:01.50\nMB,4,1\nMB,5,0\nMB,6,1\n");
  EXPECT_THAT(Write("K220-22-R1", "Operand Type,0,1\r\nMI,,22136\r\nx,y\r\nTIMER PRESET\r\n").err,
              AllOf(HasSubstr("Left out: line 3 (\"y\" is no value)"), HasSubstr("read back: 1 value.")))
      << "as the view exports it";
  EXPECT_THAT(Read("K220-22-R1", {"--json"}).out, HasSubstr("\"text\": \"12 34 56 78\""));
  EXPECT_EQ(Write("K220-22-R1", values, {"--yes", "--json"}).out,
            "{\n  \"written\": 6,\n  \"compared\": 6,\n  \"missing\": 0\n}\n");
}

// The cable is moved to another controller of the same model while nobody closes the link.
TEST_F(Regions, OfAnotherControllerOnTheSameLinkAreNotWatched) {
  for (const auto silence : {std::chrono::seconds(0), std::chrono::seconds(5)}) {
    bench.options.serialNumber = std::nullopt;
    bench.ReplaceController("Q50", {});
    Axt("2\tMI\t100\t101\t\r\n", "Q50");
    bench.pacer.After(std::chrono::seconds(2), [&] {
      bench.options.serialNumber = 4711;
      bench.ReplaceController("Q50", silence);
    });
    const Result result = Watch({"--for", "60", "--every", "1000"});
    EXPECT_EQ(result.exit, 7) << result.err;
    EXPECT_THAT(result.err, HasSubstr("another controller answered: Q50-2-R34, serial number 4711 instead of Q50"));
    EXPECT_THAT(result.err, HasSubstr("What to do: connect the right controller"));
    EXPECT_THAT(result.err, ::testing::Not(HasSubstr("The controller answers again")));
  }
}

TEST_F(Regions, ThatCannotBeUsedAreRefusedBeforeAnyOperandIsAskedFor) {
  const std::string mi = "2\tMI\t0\t9\t\r\n";
  const std::tuple<const char*, const char*, std::string, const char*, int, const char*> cases[] = {
      {"K220-22-R1", "Q50", mi, nullptr, 6, "The file applies to a different controller model"},
      {"K220-22-R1", "Aurex", "2\tMI\t2048\t2048\t\r\n", nullptr, 4,
       "remove the region, and add it anew with addresses from 0 to 2047; save the file again"},
      {"K220-22-R1", "Aurex", mi, "MI,0,1\nMI,1,1.5\n", 6, "line 2: MI 1 is \"1.5\""},
      {"K220-22-R1", "Aurex", mi, "MI,0,\n", 6, "line 1: MI 0 has no value"},
      {"K220-22-R1", "Aurex", "13\tTIMER PRESET\t0\t1\t\r\n", "TIMER PRESET,1,1\n", 6, "may be a number of days"},
      {"K220-22-R1", "Aurex", mi, "Operand Type,0\nMX,1\n", 6, "line 2: there is no operand type"},
      {"K220-22-R1", "Aurex", mi, "MI,0,1\nMI,10,1\n", 6, "line 2: MI 10 is in none of the regions"},
      {"K220-22-R1", "Aurex", mi, "MI,0,1\nMI,0,1\n", 6, "line 2: MI 0 is in line 1 too"},
      {"K220-22-R1", "Aurex", mi, "MI;0;1\n", 6, "three fields were expected"},
      {"K220-22-R1", "Aurex", mi, "QI,0,1\n", 6, "no operand type \"QI\""},
      {"K220-22-R1", "Aurex", mi, "MI,x,1\n", 6, "\"x\" is no operand address"},
  };
  for (const auto& [model, family, rows, values, exit, message] : cases) {
    SCOPED_TRACE(message);
    Axt(rows, family);
    const Result result = values != nullptr ? Write(model, values) : Read(model);
    EXPECT_EQ(result.exit, exit);
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.trace, "");
  }
  Axt("19\tXB\t0\t9\t\r\n");
  bench.options.osVersion = "2.90";
  EXPECT_THAT(Read("K330").err, HasSubstr("Some of the defined regions are not supported by the O/S"));

  const std::string file = Axt(mi);
  const std::vector<std::string> misused[] = {{"regions", "write", file},
                                              {"regions", "read", file, file},
                                              {"regions", "write", file, file, "--csv"},
                                              {"regions", "copy", file},
                                              {"watch"},
                                              {"watch", file, "--count", "0"}};
  for (const auto& arguments : misused) {
    EXPECT_EQ(bench.On("Q50", arguments).exit, 2) << ::testing::PrintToString(arguments);
  }
  EXPECT_EQ(bench.On("Q50", {"regions", "read", "nowhere.axt"}).exit, 6);
  EXPECT_EQ(bench.On("Q50", {"watch", "nowhere.axt"}).exit, 6);
}

TEST_F(Regions, AreWrittenAfterAskingAndReadOnlyOnesAside) {
  Axt("7\tSB\t0\t1\t\r\n2\tMI\t0\t1\t\r\n8\tSI\t0\t0\t\r\n", "Q50");
  const Result declined = Write("Q50", "MI,0,5\nSB,0,1\n", {});
  EXPECT_EQ(declined.exit, 1);
  EXPECT_THAT(declined.err, HasSubstr("Write 1 value to Simulated Q50?"));
  EXPECT_THAT(declined.err, HasSubstr("nothing was written"));
  EXPECT_THAT(declined.trace, Not(HasSubstr(": write ")));

  bench.input.lines.emplace(1, "y");
  const Result written = Write("Q50", "MI,0,5\nSB,0,1\n", {});
  EXPECT_EQ(written.exit, 0);
  const std::string message = "Values cannot be written to some of the defined regions.";
  EXPECT_THAT(written.err, HasSubstr(message));
  EXPECT_EQ(written.err.find(message), written.err.rfind(message));
  EXPECT_EQ(bench.On("Q50", {"read", "MI", "0", "1"}).out, "0\t5\n1\t0\n");

  const Result none = Write("Q50", "SB,0,1\n");
  EXPECT_EQ(none.exit, 0);
  EXPECT_THAT(none.trace, Not(HasSubstr(": write ")));
}

TEST_F(Regions, EndWithTheExitCodeThatTellsWhatToDo) {
  const std::string values = "MI,0,5\nMI,1,6\nMB,0,1\n";
  const std::tuple<const char*, int, const char*> cases[] = {
      {"lie:on=WO,nth=2", 5, "MB 0 reads 0 instead of 1"},
      {"refuse:on=WO,code=06,nth=2", 4, "2 of 3 values had been written before"},
      {"refuse:on=WO,code=06", 4, "nothing was written"},
      {"lost:on=WO,nth=2,dir=in,away=600000", 7, "MB 0 may have been written; 2 of 3 values had been written before"},
      {"noreply:on=RO", 7, "was written, but could not be read back"},
  };
  for (const auto& [fault, exit, message] : cases) {
    SCOPED_TRACE(fault);
    CommandBench fresh;
    fresh.options.faults = {fault};
    const std::string axt = Axt("2\tMI\t0\t1\t\r\n1\tMB\t0\t0\t\r\n", "Q50");
    const Result result = fresh.On("Q50", {"regions", "write", axt, Put("values.csv", values), "--yes"});
    EXPECT_EQ(result.exit, exit);
    EXPECT_THAT(result.err, HasSubstr(message));
  }
}

TEST_F(Regions, AreWatchedUntilEnoughHasChanged) {
  Axt("2\tMI\t99\t100\t\r\n1\tMB\t0\t0\t\r\n", "Q50");  // MI 100 moves by itself
  const Result counted = Watch({"--count", "2"});
  EXPECT_EQ(counted.exit, 0) << counted.err;
  EXPECT_EQ(counted.err, "");
  EXPECT_THAT(counted.out, MatchesRegex("2024-01-01 00:00:[0-9][0-9]\tMI\t100\t[0-9]+\t[0-9]+\n"
                                        "2024-01-01 00:00:[0-9][0-9]\tMI\t100\t[0-9]+\t[0-9]+\n"));
  EXPECT_THAT(Watch({"--count", "1", "--json"}).out,
              MatchesRegex(
                  "\\{\"time\":\"[^\"]+\",\"type\":\"MI\",\"address\":100,\"old\":\"[0-9]+\",\"new\":\"[0-9]+\"\\}\n"));

  const Instant start = bench.pacer.Now();
  EXPECT_EQ(Watch({"--for", "10", "--every", "1000"}).exit, 0);
  EXPECT_GE(bench.pacer.Now() - start, std::chrono::seconds(10));
  EXPECT_LE(bench.pacer.Now() - start, std::chrono::seconds(12));

  bench.pacer.After(std::chrono::milliseconds(700), [&] { bench.pacer.RequestStop(); });
  const Result stopped = Watch({});
  EXPECT_EQ(stopped.exit, 130);
  EXPECT_THAT(stopped.err, HasSubstr("stopped by Ctrl-C"));
  bench.pacer.ClearStop();
  Axt("", "Q50");
  EXPECT_THAT(Watch({}).err, HasSubstr("nothing to watch"));
}

TEST_F(Regions, ThatThisModelCannotBeAskedForAreNamedAndStopNoOthers) {
  Axt("6\tDBI\t0\t9\t\r\n2\tMI\t0\t0\t\r\n", "Q50");
  const Result read = Read("AurexQ50");
  EXPECT_EQ(read.exit, 0);
  EXPECT_EQ(read.out, "DBI\t0\t9\t\t\nMI\t0\t0\t\t     0\n");
  EXPECT_THAT(read.err, HasSubstr("DBI 0..9 cannot be read from a controller of the model AurexQ50."));
  const std::string file = Utf8FromPath(bench.home.Path() / "regions.axt");
  const Result watched = bench.On("AurexQ50", {"watch", file, "--for", "1"});
  EXPECT_EQ(watched.exit, 0) << watched.err;
  EXPECT_THAT(watched.err, HasSubstr("DBI 0..9 cannot be read"));
}

TEST_F(Regions, AreWatchedAcrossALostLink) {
  Axt("2\tMI\t100\t100\t\r\n", "Q50");
  bench.options.faults = {"lost:on=RO,nth=3,away=20000"};
  const Result lost = Watch({"--for", "120"});
  EXPECT_EQ(lost.exit, 0) << lost.err;
  EXPECT_THAT(lost.err, HasSubstr("The watch goes on when it answers."));
  EXPECT_THAT(lost.err, HasSubstr("The controller answers again."));

  for (const auto& [fault, exit] : {std::pair{"lost:on=RO,nth=3,away=600000", 7}, {"refuse:on=RO,code=06,nth=3", 4}}) {
    CommandBench fresh;
    fresh.options.faults = {fault};
    const std::string file = Utf8FromPath(bench.home.Path() / "regions.axt");
    EXPECT_EQ(fresh.On("Q50", {"watch", file, "--for", "60"}).exit, exit) << fault;
  }
}

}  // namespace
}  // namespace kv::test
