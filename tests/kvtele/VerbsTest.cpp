#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Identify, TellsWhoAnswers) {
  CommandBench bench;
  const Result result = bench.On("Q50", {"identify"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, StartsWith("model          Q50-2-R34\n"
                                     "host model     Q50\n"
                                     "hardware code  50\n"
                                     "O/S            4.60\n"
                                     "build          19\n"
                                     "unit           1\n"
                                     "link           Simulated Q50\n"
                                     "serial number  "));
  EXPECT_THAT(result.out, HasSubstr("\nstate          running\nproject        -\n"));
}

TEST(Identify, ShowsABootLoaderAsSuch) {
  CommandBench bench;
  bench.options.boot = true;
  const Result result = bench.On("K670", {"identify", "--json"});
  EXPECT_EQ(result.exit, 0);
  EXPECT_THAT(result.out, HasSubstr("\"model\": \"CLR BOOT\""));
  EXPECT_THAT(result.out, HasSubstr("\"state\": \"boot loader\",\n  \"bootLoader\": true"));
}

TEST(WriteAndRead, BringsBackWhatWasWritten) {
  const std::tuple<const char*, std::vector<std::string>, std::vector<std::string>, const char*> rows[] = {
      {"K670", {"MI", "0", "4660", "22136"}, {"mi", "0", "1", "--format", "HEX", "--size", "8"}, "12 34 56 78\n"},
      {"K220-22-R1", {"MI", "2047", "-32768"}, {"MI", "2047"}, "2047\t-32768\n"},
      {"K670", {"MB", "8190", "1", "1"}, {"MB", "8189", "8191"}, "8189\t0\n8190\t1\n8191\t1\n"},
      {"K670", {"MF", "3", "-1.50e3", "0.1"}, {"MF", "3", "4"}, "3\t-1500\n4\t0.1\n"},
      {"K220-22-R1", {"timer-preset", "5", "1:30"}, {"TIMER PRESET", "5"}, "5\t01:30:00.00\n"},
      {"Q50", {"TIMER PRESET", "5", "1500"}, {"TIMER-PRESET", "5"}, "5\t1500\n"},
      {"K670", {"COUNTER-PRESET", "31", "65535"}, {"COUNTER PRESET", "31"}, "31\t65535\n"},
      {"BRIO", {"ML", "1", "-7"}, {"ML", "1", "--size", "32", "--format", "decimal"}, "         -7\n"},
  };
  for (const auto& [model, write, read, out] : rows) {
    SCOPED_TRACE(model + (" " + write[0]));
    CommandBench bench;
    const auto run = [&](const char* verb, std::vector<std::string> arguments) {
      arguments.insert(arguments.begin(), verb);
      const Result result = bench.On(model, arguments);
      EXPECT_EQ(result.exit, 0) << result.err;
      return result.out;
    };
    EXPECT_EQ(run("write", write), "");
    EXPECT_EQ(run("read", read), out);
  }
}

TEST(Read, SplitsLongRangesAndLosesNothing) {
  CommandBench bench;
  std::vector<std::string> write{"write", "DBI", "1"};
  std::string expected;
  for (int i = 1; i <= 150; ++i) {
    write.push_back(std::to_string(i - 75));
    expected += std::to_string(i) + "\t" + std::to_string(i - 75) + "\n";
  }
  EXPECT_EQ(bench.On("Q50", write).exit, 0);
  const Result result = bench.On("Q50", {"read", "DBI", "1", "150"});
  EXPECT_EQ(result.out, expected);
  EXPECT_THAT(result.trace, HasSubstr("read DBI 121..150]"));
}

TEST(Write, ShowsItsProgressOnATerminalOnlyAndWipesIt) {
  const std::vector<std::string> write{"write", "MF", "0", "1", "2"};
  CommandBench bench;
  EXPECT_EQ(bench.On("K670", write).err, "Written and read back: MF 0..1\n");
  bench.errIsTerminal = true;
  const std::string err = bench.On("K670", write).err;
  EXPECT_THAT(err, StartsWith("\rwriting MF 0..1: 2 of 2\r                       \r"));
  EXPECT_THAT(err, ::testing::EndsWith("\rWritten and read back: MF 0..1\n"));
}

TEST(Ports, ListsSerialLines) {
  CommandBench bench;
  EXPECT_EQ(bench.Run({"ports"}).out, "");
  EXPECT_EQ(bench.Run({"ports"}).err, "This machine has no serial line.\n");
  bench.serialPorts = {{"COM3", "COM3", "USB-Serial Controller", ""}, {"COM12", "COM12", "", ""}};
  EXPECT_EQ(bench.Run({"ports"}).out, "COM3\tUSB-Serial Controller\nCOM12\t\n");
  EXPECT_THAT(bench.Run({"ports", "--json"}).out, HasSubstr("\"path\": \"COM12\""));
}

TEST(Json, IsOneDocumentAndSaysTheSame) {
  CommandBench bench;
  EXPECT_EQ(bench.On("Q50", {"--json", "write", "MI", "0", "65", "66"}).out,
            "{\n  \"type\": \"MI\",\n  \"from\": 0,\n  \"to\": 1,\n  \"values\": [\n    \"65\",\n    \"66\"\n  ]\n}\n");
  EXPECT_THAT(bench.On("Q50", {"read", "MI", "0", "1", "--size", "16", "--format", "ascii", "--json"}).out,
              HasSubstr("\"text\": \"AB\""));
}

TEST(Sessions, GiveTheirLinkWhenNoneIsNamed) {
  CommandBench bench;
  bench.home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=sim\r\nModel=Q50\r\nUnitID=1\r\n");
  EXPECT_THAT(bench.Run({"identify"}).out, HasSubstr("Simulated Q50\n"));
  std::filesystem::create_directory(bench.home.Path() / "Sessions" / "Plant 2");
  EXPECT_THAT(bench.Run({"--session", "Plant 2", "identify"}).out, HasSubstr("Simulated K220-22-R1\n"));
  EXPECT_THAT(bench.Run({"--home", (bench.home.Path() / "elsewhere").string(), "--link", "sim:K670", "identify"}).out,
              HasSubstr("Simulated K670\n"));
}

TEST(Help, BeginsWithExamplesAndGoesToStandardOutput) {
  CommandBench bench;
  for (const char* verb : {"identify", "read", "write", "clone", "ports"}) {
    const Result result = bench.Run({verb, "--help"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, StartsWith("Examples:\n  kvtele "));
    EXPECT_THAT(result.out, HasSubstr(std::string("Usage: kvtele ") + verb));
  }
  EXPECT_THAT(bench.Run({"--help"}).out, StartsWith("Examples:\n  kvtele "));
  EXPECT_THAT(bench.Run({"--version"}).out, ::testing::MatchesRegex("kvtele [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
}  // namespace kv::test
