#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvTele2/PagesFile.h"
#include "base/PathText.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Identify, TellsWhoAnswers) {
  CommandFixture fixture;
  const Result result = fixture.On("Q50", "identify");
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
  EXPECT_THAT(fixture.On("Q50", "identify --json").out, HasSubstr("\"bootLoader\": false"));
  fixture.options.boot = true;
  EXPECT_THAT(fixture.On("K670", "identify --json").out,
              HasSubstr("\"state\": \"boot loader\",\n  \"bootLoader\": true"));
}

TEST(WriteAndRead, BringsBackWhatWasWritten) {
  const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
      {"K670", "MI 0 4660 22136", "mi 0 1 --format HEX --size 8", "12 34 56 78\n"},
      {"K220-22-R1", "MI 2047 -32768", "MI 2047", "2047\t-32768\n"},
      {"K670", "MB 8190 1 1", "MB 8189 8191", "8189\t0\n8190\t1\n8191\t1\n"},
      {"K670", "MF 3 -1.50e3 0.1", "MF 3 4", "3\t-1500\n4\t0.1\n"},
      {"K220-22-R1", "timer-preset 5 1:30", "'TIMER PRESET' 5", "5\t01:30:00.00\n"},
      {"Q50", "'TIMER PRESET' 5 1500", "TIMER-PRESET 5", "5\t1500\n"},
      {"K670", "COUNTER-PRESET 31 65535", "'COUNTER PRESET' 31", "31\t65535\n"},
      {"BRIO", "ML 1 -7", "ML 1 --size 32 --format decimal", "         -7\n"},
  };
  for (const auto& [model, write, read, out] : rows) {
    SCOPED_TRACE(write);
    CommandFixture fixture;
    const Result written = fixture.On(model, std::string("write ") + write);
    EXPECT_EQ(written.exit, 0) << written.err;
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(fixture.On(model, std::string("read ") + read).out, out);
  }
}

TEST(Ports, ListsSerialLines) {
  CommandFixture fixture;
  EXPECT_EQ(fixture.Run("ports").out, "");
  EXPECT_EQ(fixture.Run("ports").err, "This machine has no serial line.\n");
  fixture.serialPorts = {{"COM3", "COM3", "USB-Serial Controller", ""}, {"COM12", "COM12", "", ""}};
  EXPECT_EQ(fixture.Run("ports").out, "COM3\tUSB-Serial Controller\nCOM12\t\n");
  EXPECT_THAT(fixture.Run("ports --json").out, HasSubstr("\"path\": \"COM12\""));
  fixture.outIsBroken = true;
  const Result broken = fixture.Run("ports");
  EXPECT_EQ(broken.exit, 1);
  EXPECT_THAT(broken.err, HasSubstr("could not be written"));
}

TEST(Paths, AreToldAndRefusedWhereNothingCanBeWritten) {
  CommandFixture fixture;
  EXPECT_THAT(fixture.Run("paths").out, HasSubstr("home             " + Utf8FromPath(fixture.home.Path()) + "\n"));
  EXPECT_THAT(fixture.Run("--home @x --json paths").out, HasSubstr("\"because\": \"named by --home\""));
  fixture.places = ProgramPlaces{fixture.home.Path() / "nowhere", {}};
  for (const char* line : {"paths", "sessions list", "--link sim:Q50 identify"}) {
    fixture.ExpectFailure({line, 1, "failed", "there is no folder for the sessions"});
  }
  EXPECT_EQ(fixture.Run("ports").exit, 0);
}

TEST(Json, IsOneDocumentAndSaysTheSame) {
  CommandFixture fixture;
  EXPECT_EQ(fixture.On("Q50", "--json write MI 0 65 66").out,
            "{\n  \"type\": \"MI\",\n  \"from\": 0,\n  \"to\": 1,\n  \"values\": [\n    \"65\",\n    \"66\"\n  ]\n}\n");
  EXPECT_THAT(fixture.On("Q50", "read MI 0 1 --size 16 --format ascii --json").out, HasSubstr("\"text\": \"AB\""));
  EXPECT_EQ(fixture.On("Q50", "write MI 0 -32641").exit, 0);  // the byte 7F
  EXPECT_THAT(fixture.On("Q50", "read MI 0 --size 8 --format ascii --json").out, HasSubstr("\\u007F"));
}

TEST(Help, BeginsWithExamplesAndGoesToStandardOutput) {
  CommandFixture fixture;
  for (const char* verb : {"identify", "online", "read", "write", "regions", "watch", "clone", "download", "run",
                           "stop", "sessions", "ports"}) {
    const Result result = fixture.Run(verb + std::string(" --help"));
    const std::string examples = result.out.substr(0, result.out.find("\n\n"));
    EXPECT_THAT(examples, Not(HasSubstr("--password "))) << "others see it in the list of processes";
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, StartsWith("Examples:\n  kvtele "));
    EXPECT_THAT(result.out, HasSubstr(std::string("Usage: kvtele ") + verb));
  }
  EXPECT_THAT(fixture.Run("--help").out, StartsWith("Examples:\n  kvtele "));
  EXPECT_THAT(fixture.Run("--version").out, ::testing::MatchesRegex("kvtele \\w+\\.\\w+\\.\\w+\n"));
}

// ---- sessions ----

TEST(Sessions, GiveTheirLinkWhenNoneIsNamed) {
  CommandFixture fixture;
  fixture.home.Put("Sessions/Default/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=sim\r\nModel=Q50\r\nUnitID=1\r\n");
  EXPECT_THAT(fixture.Run("identify").out, HasSubstr("Simulated Q50\n"));
  std::filesystem::create_directory(fixture.home.Path() / "Sessions" / "Plant 2");
  EXPECT_THAT(fixture.Run("--session 'Plant 2' identify").out, HasSubstr("Simulated K220-22-R1\n"));
  EXPECT_THAT(fixture.Run("--home @elsewhere --link sim:K670 identify").out, HasSubstr("Simulated K670\n"));
}

TEST(Sessions, AreListedCopiedAndDeleted) {
  CommandFixture fixture;
  fixture.home.Put("Sessions/Default/KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=Q50\r\n");
  EXPECT_EQ(fixture.Run("sessions create Plant").exit, 0);
  EXPECT_EQ(fixture.Run("sessions create Copy --session Plant").exit, 0);
  fixture.home.Put("Sessions/Plant/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=10.0.0.7\r\nTcpPort=20301\r\n");
  EXPECT_EQ(fixture.Run("sessions list").out,
            "Copy\tQ50\tSimulated Q50\nDefault\tQ50\tSimulated Q50\nPlant\tQ50\t10.0.0.7:20301, unit 1\n");
  EXPECT_THAT(fixture.Run("sessions --json list").out, HasSubstr(R"("link": "10.0.0.7:20301, unit 1")"));
  const auto copy = fixture.home.Path() / "Sessions" / "Copy";
  EXPECT_EQ(TemporaryFolder::Content(copy / "KvTeleExe.ini"), "[KvTeleExe]\r\nLastModel=Q50\r\n");

  // A window that works in a session has its mark read-only.
  std::filesystem::permissions(copy / "tmp.txt", std::filesystem::perms::owner_read);
  fixture.ExpectFailure({"sessions delete Copy", 1, "failed", "in use"});
  fixture.ExpectFailure(
      {"sessions delete Plant", 1, "declined", "Delete the session 'Plant' (Q50, 10.0.0.7:20301, unit 1)?"});
  EXPECT_THAT(fixture.Run("sessions list").out, HasSubstr("Plant"));
  EXPECT_EQ(fixture.Run("sessions delete Plant --yes").exit, 0);
  EXPECT_THAT(fixture.Run("sessions list").out, Not(HasSubstr("Plant")));
}

// ---- going on line ----

TEST(Online, TellsWithWhatItIsOnLineAndLeavesTheSessionAlone) {
  CommandFixture fixture;
  fixture.home.Put("plant.ktc", "fonts");
  const std::string settings =
      "[KvTeleExe]\r\nLastModel=K230\r\nRecentCache0=" + fixture.PathOf("plant.ktc") + "*Plant\r\n";
  const auto ini = fixture.home.Put("Sessions/Default/KvTeleExe.ini", settings);
  const Result result = fixture.On("K670-T40", "online");
  EXPECT_EQ(result.exit, 0);
  EXPECT_EQ(result.err, "No project was compared: name a Telepanel file with --project.\n");
  EXPECT_THAT(result.out,
              HasSubstr("\nreported as    K670-67-T40 / K390-29-T40\nhardware code  67\nO/S            1.10\n"
                        "build          19\n"));
  EXPECT_THAT(result.out, HasSubstr("plant.ktc"));

  // The model decides how the controller is asked.
  const Result misfit = fixture.On("Q50", "online --json");
  EXPECT_THAT(misfit.out, HasSubstr("\"panelInformation\": null"));
  EXPECT_THAT(misfit.err, StartsWith("The controller is a Q50-2-R34, but it was served as the session's model, K230"));
  EXPECT_THAT(fixture.On("Q50", "--model Q50 online --json").out, HasSubstr("\"panelInformation\": 3"));
  EXPECT_THAT(fixture.Run("online").out, HasSubstr("Simulated K230")) << "a session without a link has its model's";

  EXPECT_EQ(TemporaryFolder::Content(ini), settings);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(ini.parent_path()), {}), 1) << "nothing was added";
}

TEST(Online, SaysWhyAControllerIsRefused) {
  CommandFixture fixture;
  fixture.home.Put("mill.kta", PrintPagesFile({"Mill", "K330"}));
  const char* const mill = "--link sim:K330 online --project @mill.kta";
  fixture.ExpectFailure({mill, 4, "refused", "does not match the project currently installed in the controller."});
  fixture.ExpectFailure({mill, 4, "refused", "for the project Mill, but the controller holds none"});
  fixture.ExpectFailure({"--link sim:K330 --model K230 online", 4, "notFit", "not a K230"});

  fixture.options.boot = true;
  const Result boot = fixture.ExpectFailure({"--link sim:K220-22-R1 online", 4, "refused",
                                             "You cannot access this PLC because it is currently in BOOTSTRAP mode."});
  EXPECT_THAT(boot.err, ContainsRegex("The controller: model BOOT, hardware code .*serial number \\w+, "
                                      "state boot loader"));
  fixture.options.unit = 7;
  fixture.ExpectFailure({"--link sim:K390 online", 3, "noReply", "no reply"});
}

}  // namespace
}  // namespace kv::test
