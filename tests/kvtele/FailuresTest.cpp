#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

// Scripts rely on them: what stands here stays.
TEST(Failures, HaveANameAndAnExitCodeEach) {
  using enum LinkErrorCode;
  struct LinkRow {
    LinkErrorCode code;
    const char* name;
    int neverConnected;
    int wasConnected;
  };
  // clang-format off
  const LinkRow links[] = {
      {None,            "failed",            1,   1},
      {BadArgument,     "badArgument",       1,   1},
      {CannotOpen,      "cannotOpen",        3,   7},
      {NoReply,         "noReply",           3,   7},
      {Damaged,         "damaged",           3,   7},
      {Refused,         "refused",           4,   4},
      {Busy,            "busy",              4,   4},
      {NotSupported,    "notSupported",      4,   4},
      {Stopped,         "interrupted",     130, 130},
      {LinkLost,        "linkLost",          3,   7},
      {Closed,          "linkClosed",        3,   7},
      {OtherController, "otherController",   4,   7},
      {Unsure,          "unsure",            7,   7},
  };
  // clang-format on
  const auto text = [](const cli::Failure& failure) {
    return failure.code + " " + std::to_string(static_cast<int>(failure.exit));
  };
  for (const LinkRow& row : links) {
    const LinkError error{.code = row.code, .doing = "", .happened = "", .cause = "", .cure = ""};
    EXPECT_EQ(text(cli::LinkFailure(error, false)), row.name + (" " + std::to_string(row.neverConnected)));
    EXPECT_EQ(text(cli::LinkFailure(error, true)), row.name + (" " + std::to_string(row.wasConnected)));
  }
}

TEST(Failures, ThatNeedNoControllerSendNothing) {
  const FailingCommand rows[] = {
      {"", 2, "usage", "No verb is given"},
      {"erase", 2, "usage", "There is no verb \"erase\""},
      {"read", 2, "usage", "TYPE is required"},
      {"read MI 0 1 2", 2, "usage", "not expected"},
      {"identify --bogus", 2, "usage", "--bogus"},
      {"identify --unit 256", 2, "usage", "no number from 0 to 255"},
      {"identify --timeout 49", 2, "usage", "no number from 50 to 300000"},
      {"identify --timeout 300001", 2, "usage", "no number from 50 to 300000"},
      {"identify --retries 10", 2, "usage", "no number from 0 to 9"},
      {"identify --retries x", 2, "usage", "\"x\" is no number"},
      {"identify --redials 100", 2, "usage", "no number from 0 to 99"},
      {"identify --model K", 2, "usage", "there is no model \"K\"; the models are K220-22-R1, "},
      {"identify --password 123456789", 2, "usage", "1 to 8 plain characters"},
      {"identify --password \xC3\xBC", 2, "usage", "1 to 8 plain characters"},
      {"identify --user 'a\tb'", 2, "usage", "none of them a control character"},
      {"identify --link sim:K", 2, "usage", "There is no simulated controller \"K\""},
      {"identify --link carrier-pigeon", 2, "usage", "sim:MODEL, tcp:HOST:PORT"},
      {"identify --session Nowhere --link sim:Q50", 2, "usage", "there is no session \"Nowhere\""},
      {"identify --session ../Default", 2, "usage", "A session name cannot contain"},
      {"identify --trace /nowhere/at/all.txt", 6, "badFile", "Opening the trace file"},

      {"read QI 0", 2, "usage", "XDW; a minus may stand for the blank"},
      {"read MI -1", 2, "usage", "\"-1\" is no operand address"},
      {"read MI 0 2147483648", 2, "usage", "\"2147483648\" is no operand address"},
      {"read MI 5 4", 2, "usage", "runs backwards"},
      {"read MI 0 --size 16 --format binary", 2, "usage", "--size 16 --format ascii|hex|decimal|unsigned"},
      {"read MI 0 --size 16", 2, "usage", "--size and --format belong together"},
      {"read MI 0 --link sim:K220-22-R1 --size 64 --format hex", 2, "usage", "is not offered"},
      {"read MI 2048 --link sim:K220-22-R1", 4, "notFit", "use addresses from 0 to 2047"},
      {"read MI 0 99999", 4, "notFit", "there is no MI 99999 on any model"},
      {"read MF 0 --link sim:Q50", 4, "notFit", "Q50 has no MF operands"},
      {"write MI 0", 2, "usage", "VALUE is required"},
      {"write MI 0 1 32768", 2, "outOfRange", "value 2 is \"32768\""},
      {"write TIMER-PRESET 0 15 --link sim:Q50", 2, "outOfRange", "a multiple of 10"},
      {"write SI 0 1", 4, "notFit", "can only be read"},
      {"write MI 255 1 2 --link sim:Q50", 4, "notFit", "there is no MI 256 on Q50"},

      {"regions write @mi.axt", 2, "usage", "needs the file with the values"},
      {"regions read @mi.axt @mi.axt", 2, "usage", "Read takes one file"},
      {"regions write @mi.axt @mi.axt --csv", 2, "usage", "--csv goes with read"},
      {"regions copy @mi.axt", 2, "usage", "copy"},
      {"regions read @no.axt", 6, "badFile", "no.axt"},
      {"watch", 2, "usage", "FILE is required"},
      {"watch @mi.axt --count 0", 2, "usage", "--count"},
      {"watch @no.axt", 6, "badFile", "no.axt"},

      {"sessions create Default", 1, "failed", "Creating session \"Default\""},
      {"sessions create ../up", 2, "usage", "A session name cannot contain"},
      {"sessions create", 2, "usage", "Create needs the session's name"},
      {"sessions create x --session gone", 2, "usage", "There is no session \"gone\""},
      {"sessions list Default", 2, "usage", "List takes no name"},
      {"sessions delete Default", 1, "failed", "Deleting session \"Default\""},
      {"sessions delete gone", 2, "usage", "There is no session \"gone\""},
      {"sessions list --home @nowhere", 1, "failed", "Listing the sessions"},
      {"online --project @mi.axt", 6, "badFile", "Reading the Telepanel file"},

      {"clone create @x.kdf", 2, "usage", "give it with --password"},
      {"clone create @x.kdf --password 1 --segments OP,", 2, "usage", "no segment \"\""},
      {"clone create @x.kdf --stop --no-stop", 2, "usage", "--no-stop"},
      {"clone create @mi.axt --password 1", 1, "notConfirmed", "exists. Replace it?"},
      {"clone create @mi.axt --password 1 --yes", 1, "notConfirmed", "--replace"},
      {"clone restore @x.kdf --stop", 2, "usage", "about its --backup"},
      {"clone restore @no.kdf", 6, "badFile", "no.kdf"},
      {"clone info @no.kdf", 6, "badFile", "no.kdf"},
      {"clone info @x.kdf @x.kdf", 2, "usage", "econd file can be given with diff only"},
      {"clone diff @no.kdf @mi.axt", 6, "badFile", "no.kdf"},
  };
  CommandFixture fixture;
  fixture.home.Put("mi.axt", "Version 100\r\nAurex\r\n2\tMI\t0\t9\t\r\n\r\n");
  for (const FailingCommand& row : rows) EXPECT_EQ(fixture.ExpectFailure(row).trace, "") << row.line;
  std::string name;  // characters are counted, not bytes
  for (int i = 0; i < 255; ++i) name += "\xC3\xBC";
  EXPECT_EQ(fixture.On("Q50", "identify --user " + name).exit, 0);
  EXPECT_EQ(fixture.On("Q50", "identify --user " + name + "x").exit, 2);
  // Each flag by itself where it means nothing.
  const std::tuple<const char*, const char*, const char*> strays[] = {
      {"clone info @x.kdf", "--segments OP|--replace|--stop|--no-stop|--comment x", " can be given with "},
      {"clone info @x.kdf", "--force|--verify|--end-load|--erase-empty|--backup @b.kdf", " can be given with "},
      {"clone diff @x.kdf", "--unit-from-controller|--no-stop|--comment x", " can be given with "},
      {"download info @x.dai", "--file @a.kos|--fonts @a.kft|--list|--dry-run|--backup @b.kdf", " mean nothing with "},
      {"download info @x.dai", "--end-load|--replace|--stop|--no-stop|--other-model|--no-reset", " mean nothing with "},
      {"download project @x.dai", "--same-os|--lose-project|--lose-values|--retry 1|--list", " mean nothing with "},
      {"download os", "@x.dai|--other-model|--no-reset", " mean nothing with "},
  };
  for (const auto& [command, flags, message] : strays) {
    std::istringstream each(flags);
    for (std::string flag; std::getline(each, flag, '|');) {
      const std::string line = std::string(command) + " " + flag;
      fixture.ExpectFailure({line.c_str(), 2, "usage", message});
    }
  }
  EXPECT_EQ(
      fixture.On("Q50", "write MI 0 x --json").out,
      "{\n  \"error\": {\n    \"code\": \"outOfRange\",\n    \"exit\": 2,\n    \"doing\": \"writing MI\",\n"
      "    \"happened\": \"The values you have entered are out of the legal range for this data type.\",\n"
      "    \"cause\": \"value 1 is \\\"x\\\"\",\n    \"cure\": \"use whole numbers from -32768 to 32767\"\n  }\n}\n");
}

TEST(Failures, OfALinkThatDoesNotOpenAreThoseOfEveryCommand) {
  CommandFixture fixture;
  fixture.home.Put("mi.axt", "Version 100\r\nAurex\r\n2\tMI\t0\t9\t\r\n\r\n");
  fixture.home.Put("v.csv", "MI,0,1\n");
  for (const char* command : {"identify", "online", "read MI 3000", "write MI 0 1", "regions read @mi.axt",
                              "regions write @mi.axt @v.csv", "watch @mi.axt", "clone create @x.kdf --password 1",
                              "clone verify @x.kdf", "clone diff @x.kdf", "run", "stop"}) {
    const std::string line = std::string("--link tcp:127.0.0.1:1 ") + command;
    fixture.ExpectFailure({line.c_str(), 3, "cannotOpen", "refused the connection"});
  }
  EXPECT_FALSE(std::filesystem::exists(fixture.PathOf("x.kdf")));
  fixture.ExpectFailure({"--link serial:/nowhere/ttyS99 identify", 3, "cannotOpen", "/nowhere/ttyS99"});
}

TEST(Failures, OfWhatTheControllerIsComeBeforeAnyOperandIsAskedFor) {
  const std::tuple<FailingCommand, const char*, bool> rows[] = {
      {{"--link sim:Q50 --retries 0 --unit 7 read MI 0", 3, "noReply", "no reply after 1 try"}, "", false},
      {{"--link sim:Q51 --model K220-22-R1 read MI 0", 4, "notFit", "not a K220-22-R1"}, "", false},
      {{"--link sim:K220-22-R1 read MI 1024", 4, "notFit", "use addresses from 0 to 1023"}, "2.90", false},
      {{"--link sim:K220-22-R1 write XI 0 1", 4, "notFit", "not supported by the O/S"}, "2.90", false},
      {{"--link sim:K220-22-R1 read MI 0", 4, "notFit", "running its boot loader"}, "", true},
  };
  for (const auto& [command, os, boot] : rows) {
    CommandFixture fixture;
    fixture.options.osVersion = os;
    fixture.options.boot = boot;
    const Result result = fixture.ExpectFailure(command);
    EXPECT_THAT(result.trace, Not(HasSubstr(": read "))) << command.line;
    EXPECT_THAT(result.trace, Not(HasSubstr(": write "))) << command.line;
  }
}

// 150 words: three requests.
std::string LongWrite() {
  std::string line = "--link sim:Q50 write DBI 0";
  for (int i = 0; i < 150; ++i) line += " 1";
  return line;
}

TEST(Failures, InTheMiddleSayHowFarItWas) {
  const std::string longWrite = LongWrite();
  const char* const write = "--link sim:Q50 regions write @two.axt @two.csv --yes";
  const FailingCommand rows[] = {
      {"--link sim:Q50 read MI 0", 4, "busy", "busy", "busy:on=RO"},
      {"--link sim:Q50 read MI 0", 7, "noReply", "no reply", "noreply:on=RO"},
      {"--link sim:Q50 read MI 0", 3, "noReply", "no reply", "noreply:on=ID"},
      {"--link sim:Q50 write MI 7 5", 5, "differs", "MI 7 reads 0 instead of 5", "lie:on=WO"},
      {"--link sim:Q50 write MI 0 1", 4, "refused", "nothing was written", "refuse:on=WO,code=06"},
      {"--link sim:Q50 write MI 0 1", 7, "noReply", "MI 0 was written, but could not be read back", "noreply:on=RO"},
      {longWrite.c_str(), 4, "refused", "DBI 0..119 had been written before", "refuse:on=WO,code=06,nth=3"},
      {longWrite.c_str(), 7, "unsure", "DBI 60..119 may have been written; DBI 0..59 had been written before",
       "lost:on=WO,nth=2,dir=in,away=600000"},
      {longWrite.c_str(), 130, "interrupted", "DBI 0..59 had been written before", "late:on=WO,nth=2,ms=900"},
      {write, 5, "differs", "MB 0 reads 0 instead of 1", "lie:on=WO,nth=2"},
      {write, 4, "refused", "2 of 3 values had been written before", "refuse:on=WO,code=06,nth=2"},
      {write, 4, "refused", "nothing was written", "refuse:on=WO,code=06"},
      {write, 7, "unsure", "MB 0 may have been written; 2 of 3 values", "lost:on=WO,nth=2,dir=in,away=600000"},
      {write, 7, "noReply", "was written, but could not be read back", "noreply:on=RO"},
      {"--link sim:Q50 watch @two.axt --for 60", 7, "noReply", "no reply", "noreply:on=RO"},
      {"--link sim:Q50 watch @two.axt --for 60", 7, "linkLost", "Simulated Q50", "lost:on=RO,nth=3,away=600000"},
      {"--link sim:Q50 watch @two.axt --for 60", 4, "refused", "efused", "refuse:on=RO,code=06,nth=3"},
      {"--link sim:Q50 --yes stop", 4, "refused", "efused", "refuse:on=CC,code=06"},
  };
  for (const FailingCommand& row : rows) {
    CommandFixture fixture;
    fixture.home.Put("two.axt", "Version 100\r\nQ50\r\n2\tMI\t0\t1\t\r\n1\tMB\t0\t0\t\r\n\r\n");
    fixture.home.Put("two.csv", "MI,0,5\nMI,1,6\nMB,0,1\n");
    const auto stop = [&] { fixture.pacer.RequestStop(); };  // as Ctrl-C does
    if (row.exit == 130) fixture.pacer.After(std::chrono::milliseconds(400), stop);
    fixture.ExpectFailure(row);
  }
}

}  // namespace
}  // namespace kv::test
