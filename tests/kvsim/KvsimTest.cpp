#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <set>

#include "KvsimClient.h"
#include "base/PathText.h"
#include "download/DownloadFile.h"
#include "download/OsFileLists.h"

namespace kvtest {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

struct KvsimTest : testing::Test {
  kv::TemporaryFolder home;
  const fs::path folder = home.Path();
};

TEST_F(KvsimTest, ServesSeveralClientsInTurnAndAtOnce) {
  KvsimProcess kvsim({"--tcp", "0", "--model", "Q50"}, Console::Own);
  const auto port = kvsim.Port();
  ASSERT_NE(port, 0);
  auto first = DialLoopback(port);
  auto second = DialLoopback(port);
  for (auto* client : {&first, &second, &first}) {
    EXPECT_THAT(Exchange(*client, "ID"), StartsWith("/01IDQ50-2-R34|"));
  }
  first.Close();
  EXPECT_THAT(Exchange(second, "ID"), StartsWith("/01IDQ50-2-R34|"));
  const auto third = DialLoopback(port);
  for (const char byte : kv::BuildFrame(1, "ID")) {
    third.Give({&byte, 1});
    EXPECT_FALSE(byte != '\r' && third.IsReady(5)) << "each byte arrives by itself";
  }
  EXPECT_THAT(third.Take(16), StartsWith("/01IDQ50-2-R34|"));
  EXPECT_THAT(Exchange(second, "ID"), StartsWith("/01IDQ50-2-R34|"));
  EXPECT_EQ(kvsim.End(SIGTERM), 0);
}

// What a fresh installation has, and files for a model and a version of their own, are what the programs take.
TEST_F(KvsimTest, MakesFilesThatCanBeDownloaded) {
  const auto make = [this](const char* kind, const std::string& place, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(), {"make", kind, (folder / place).string()});
    return KvsimProcess(std::move(arguments)).End();
  };
  EXPECT_EQ(make("set", "."), 0);
  EXPECT_EQ(make("project", "Pump.d50", {"--model", "Q50", "--name", "Pump 2"}), 0);
  EXPECT_EQ(make("os", ".", {"--model", "K220-32", "--version", "3.00", "--build", "7", "--remark", "x"}), 0);
  EXPECT_EQ(make("fonts", ".", {"--model", "K330", "--version", "1.31", "--build", "2"}), 0);
  EXPECT_EQ(KvsimProcess({"make"}).End(), 2);
  EXPECT_EQ(make("fonts", ".", {"--model", "Q50"}), 2);
  EXPECT_EQ(make("os", ".", {"--model", "K330", "--version", "4.6"}), 2);
  EXPECT_EQ(make("os", "missing/folder/", {"--model", "K330"}), 1);
  std::set<std::string> made;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    const auto read = kv::ReadDownloadFile(entry.path());
    EXPECT_TRUE(read) << read.error().Text();
    const std::string content = kv::TemporaryFolder::Content(entry.path());
    made.insert(kv::test::WithoutHome(entry.path().string(), folder) + " " + kv::ToHex(kv::Crc32(content), 8) + "\n");
  }
  EXPECT_EQ(made.size(), 30U);
  kv::test::ExpectAsRecorded([&made] { return std::accumulate(made.begin(), made.end(), std::string()); });
  EXPECT_TRUE(fs::exists(folder / "AurexK222v30007.kos"));
  const kv::ProgramPaths paths(folder);
  EXPECT_EQ(kv::ListAurexOsFiles(paths, "K220-22").os.files.size(), 3u);
  EXPECT_EQ(kv::ListCompactOsFiles(paths, {.kind = kv::CompactKind::PR1}).files.size(), 2u);
}

TEST_F(KvsimTest, DialsOutAgainAfterTheConnectionHasEnded) {
  for (const char* host : {"127.0.0.1", "[127.0.0.1]"}) {
    const Listener driver;
    KvsimProcess kvsim({"--dial", host + (":" + std::to_string(driver.Port()))});
    for (int round = 0; round < 2; ++round) {
      EXPECT_THAT(Exchange(driver.Accept(), "ID"), StartsWith("/01IDK220-22-R1|")) << host << round;
    }
  }
}

TEST_F(KvsimTest, IsTheControllerThatItWasToldToBe) {
  KvsimProcess kvsim({"--tcp",   "0",
                      "--model", "K330",
                      "--os",    "3.00",
                      "--build", "7",
                      "--unit",  "5",
                      "--boot",  "--seed",
                      "8",       "--serial-number",
                      "99",      "--password",
                      "key",     "--restart-time",
                      "0",       "--memory-seed",
                      "2"},
                     Console::Own);
  const auto client = DialLoopback(kvsim.Port());
  for (const auto& [text, reply] : {std::pair("ID", "IDBOOT|33|3.00|070001"),
                                    {"DRS000105", "DR00000063000002"},
                                    {"CCE", "CCERROR070003"},
                                    {"GIkey     ", "GIERROR090004"}}) {
    client.Give(kv::BuildFrame(5, text));
    EXPECT_THAT(client.Take(std::string(reply).size() + 12), StartsWith(std::string("/05") + reply));
  }
  EXPECT_EQ(kvsim.End(SIGTERM), 0);
  EXPECT_THAT(kvsim.Complaint(), StartsWith("kvsim: simulated K330, unit 5, seed 8"));
}

TEST_F(KvsimTest, TakesNobodyWhileItIsAway) {
  KvsimProcess kvsim({"--tcp", "0", "--fault", "lost:nth=1,at=5,away=3600000"});
  const auto port = kvsim.Port();
  EXPECT_EQ(Exchange(DialLoopback(port), "ID"), "/01ID");
  EXPECT_TRUE(DialLoopback(port).HasEnded());
}

TEST_F(KvsimTest, AnswersAsAModem) {
  KvsimProcess kvsim({"--tcp", "0", "--modem", "--dial-result", "busy"});
  const auto client = DialLoopback(kvsim.Port());
  client.Give("ATE0\r");
  EXPECT_THAT(client.Take(11), HasSubstr("OK"));
  client.Give("ATDT12345\r");
  EXPECT_EQ(client.Take(8), "\r\nBUSY\r\n");
}

TEST_F(KvsimTest, KeepsTheControllersMemoryInAFile) {
  const std::vector<std::string> arguments{"--tcp", "0", "--state",
                                           kv::Utf8FromPath(folder / kv::PathFromUtf8("M\u00FChle \u03A9.state"))};
  for (const char* const state : {"R", "S"}) {  // running at first, stopped by the run before
    KvsimProcess kvsim(arguments, Console::Own);
    const auto client = DialLoopback(kvsim.Port());
    const std::string letter = std::string("/01DR") + (*state == 'R' ? "52" : "53");
    EXPECT_THAT(Exchange(client, "DRS000001"), StartsWith(letter));
    EXPECT_THAT(Exchange(client, "CCS"), StartsWith("/01CCOK"));
    EXPECT_EQ(kvsim.End(SIGINT), 0);
  }
}

TEST_F(KvsimTest, SaysWhatIsWrongWithWhatItWasTold) {
  const Listener other;
  const auto otherPort = std::to_string(other.Port());
  const auto notALink = home.Put("file", "").string();
  const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
      {{}, 2, "--tcp"},
      {{"--tcp", "0", "--pty", "x"}, 2, "--pty"},
      {{"--tcp", "70000"}, 2, "65535"},
      {{"--tcp", "0", "--model", "K220-22-R9"}, 2, "nearest are K220-22-R1, K220-32, K380-28 (--list"},
      {{"--tcp", "0", "--fault", "nope"}, 2, "Fault rule \"nope\": \"nope\" is no kind of fault; expected one of"},
      {{"--tcp", "0", "--fault", "late"}, 2, "ms= is missing; expected milliseconds from 1 to 3600000"},
      {{"--tcp", "0", "--fault", "noreply:ms=3"}, 2, "\"ms\" is no key of it; expected one of on, nth, every, p, max"},
      {{"--tcp", "0", "--fault", "noreply:p=1.5"}, 2, "p=1.5: expected a probability from 0 to 1"},
      {{"--tcp", "0", "--fault", "noreply:on=RDX"}, 2, "on=RDX: expected two letters of a command, or block"},
      {{"--tcp", "0", "--fault", "refuse:code=100"}, 2, "code=100: expected two hexadecimal digits from 01 to 7F"},
      {{"--dial", "nowhere"}, 2, "HOST:PORT"},
      {{"--dial", ":5"}, 2, "HOST:PORT"},
      {{"--tcp", "0", "--baud", "299"}, 2, "300 to 921600"},
      {{"--tcp", "0", "--baud", "921601"}, 2, "300 to 921600"},
      {{"--tcp", "65536"}, 2, "--tcp"},
      {{"--tcp", "0", "--unit", "256"}, 2, "--unit"},
      {{"--tcp", "0", "--build", "100"}, 2, "--build"},
      {{"--tcp", "0", "--restart-time", "60001"}, 2, "--restart-time"},
      {{"--dial", "a:0"}, 2, "HOST:PORT"},
      {{"--dial", "a:65536"}, 2, "HOST:PORT"},
      {{"--tcp", otherPort}, 1, "127.0.0.1:" + otherPort},
      {{"--tcp", "0", "--bind", "banana"}, 1, "\"banana\" is not an address"},
#ifdef _WIN32
      {{"--pty", "plc"}, 1, "no pseudo terminals: use --tcp"},
#else
      {{"--pty", notALink}, 1, "not a link to a pseudo terminal"},
#endif
      {{"--tcp", "0", "--state", notALink}, 1, "file"},
  };
  for (const auto& [arguments, exitCode, complaint] : cases) {
    KvsimProcess kvsim(arguments);
    EXPECT_EQ(kvsim.End(), exitCode) << testing::PrintToString(arguments);
    EXPECT_THAT(kvsim.Complaint(), HasSubstr(complaint));
  }
  KvsimProcess models({"--list-models"});
  EXPECT_EQ(models.End(), 0);
  kv::test::ExpectAsRecorded([&models] { return kv::test::Replaced(models.Output(), "\r", ""); });
  KvsimProcess help({"--help"});
  EXPECT_EQ(help.End(), 0);
  EXPECT_THAT(help.Output(), StartsWith("Examples:"));
}

}  // namespace
}  // namespace kvtest
