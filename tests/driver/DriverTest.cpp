#include "KvCmDrv1/Driver.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Fixture.h"
#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/RoundTrip.h"
#include "KvCmDrv1/SettingsFile.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

TEST(LinkText, ParsesAndPrintsEveryKind) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"sim:K670 / K390", "sim:K670 / K390", "Simulated K670 / K390"},
      {"tcp:192.168.1.20:20301", "tcp:192.168.1.20:20301", "192.168.1.20:20301, unit 1"},
      {"tcp:plc", "tcp:plc:20300", "plc:20300, unit 1"},
      {"tcp:[::1]:5", "tcp:[::1]:5", "[::1]:5, unit 1"},
      {"tcp:[::1]", "tcp:[::1]:20300", "[::1]:20300, unit 1"},
      {"serial:COM3", "serial:COM3,115200,8N1", "COM3, 115200 8N1, unit 1"},
      {"serial:/dev/ttyS3,9600,7E2", "serial:/dev/ttyS3,9600,7E2", "/dev/ttyS3, 9600 7E2, unit 1"},
      {"modem:COM4,0123456,19200", "modem:COM4,\"0123456\",19200,\"\"", "COM4, 19200 8N1, modem 0123456, unit 1"},
      {"modem:COM4,0123,9600,AT&F", "modem:COM4,\"0123\",9600,\"AT&F\"", "COM4, 9600 8N1, modem 0123, unit 1"},
      {"listen:20302", "listen:20302", "port 20302 (listening), unit 1"},
      {"serial:\"a,\"\"b\",300", "serial:\"a,\"\"b\",300,8N1", "a,\"b, 300 8N1, unit 1"},
      {"modem:COM4,\"0,1\",9600,\"AT,E 0\"", "modem:COM4,\"0,1\",9600,\"AT,E 0\"", "COM4, 9600 8N1, modem 0,1, unit 1"},
  };
  for (const auto& [text, printed, described] : rows) {
    const auto parsed = ParseLink(text);
    ASSERT_TRUE(parsed) << parsed.error();
    EXPECT_EQ(PrintLink(*parsed), printed);
    EXPECT_EQ(DescribeLink(*parsed), described);
    EXPECT_EQ(ParseLink(printed), parsed);
  }
}

TEST(LinkText, SaysWhatItExpected) {
  const std::pair<std::string, std::vector<const char*>> rows[] = {
      {"", {"", "COM3"}},
      {"sim:", {""}},
      {"tcp:", {"", ":20300", "host:0", "host:65536", "::1:5", "[::1", "[::1]x"}},
      {"serial:", {"", ",9600", "COM3,100", "COM3,9600,9N1", "COM3,9600,8N1,x", "\"a\"b", "\"\""}},
      {"modem:", {"COM3", "COM3,", ",0123", "COM3,0,12345", "COM3,0,9600", "COM3,0123,45678", "COM3,\"0,1"}},
      {"modem:COM3,0123,9600,", {"45", "AT,E0", "AT\r"}},
      {"listen:", {"", "x"}},
  };
  for (const auto& [kind, rests] : rows) {
    for (const char* rest : rests) {
      const auto parsed = ParseLink(kind + rest);
      ASSERT_FALSE(parsed) << kind << rest;
      EXPECT_NE(parsed.error().find("expected"), std::string::npos) << parsed.error();
    }
  }
}

TEST(SettingsFile, BadValueIsNamedAndReplaced) {
  const TemporaryFolder folder;
  folder.Put("KvCmDrv1.ini",
             "[KvCmDrv1]\r\nTransport=pigeon\r\nTcpPort=0\r\nBaudRate=99\r\nFraming=9X1\r\nUnitID=256\r\nTimeOut=49\r\n"
             "Tries=many\r\nReconnect=2\r\nHost=" +
                 std::string(201, 'h') +
                 "\r\nSerialPort=COM7\r\nModemDialTimeOut=\r\nSerialNumber=x\r\nModemRedials=\r\n");
  const LoadedSettings loaded = LoadSettings(folder.Path(), {});
  LinkSettings expected;
  expected.serialPort = "COM7";
  EXPECT_EQ(loaded.settings, expected);
  ASSERT_EQ(loaded.complaints.size(), 12U);
  EXPECT_EQ(loaded.complaints[0], "KvCmDrv1.ini, Transport: expected sim, tcp, serial, modem or listen; using sim");
  EXPECT_EQ(LoadSettings(folder.Path() / "none", expected).settings, expected);
}

TEST(RoundTrip, FollowsTheLinkBetweenFloorAndCeiling) {
  RoundTrip time;
  EXPECT_EQ(time.TimeOut(1s), 1s) << "nothing is known yet";
  for (int i = 0; i < 100; ++i) time.Sample(1ms);
  EXPECT_EQ(time.TimeOut(1s), RoundTrip::kFloor);
  time.Silence();
  time.Silence();
  EXPECT_EQ(time.TimeOut(1s), 4 * RoundTrip::kFloor);
  for (int i = 0; i < 50; ++i) time.Silence();
  EXPECT_EQ(time.TimeOut(1s), 1s);
  for (int i = 0; i < 100; ++i) time.Sample(200ms);
  EXPECT_NEAR(static_cast<double>(time.TimeOut(1s).count()), 200000.0, 20000.0);
}

// A driver whose every port leads to one fake controller.
struct DriverFixture {
  VirtualPacer pacer;
  Plant plant{"K220", "Secret"};
  std::vector<std::string> messages;
  Driver driver{pacer, {}, [this](const LinkSettings&, Pacer&, ListeningSocket*) {
                  return std::make_unique<PlantPort>(plant, pacer);
                }};

  DriverFixture() {
    driver.OnComMessage = [this](const std::string& message) { messages.push_back(message); };
  }
};

TEST(Driver, OpensWithTheSessionsSettingsAndKeepsTheLinkWhileTheyDescribeIt) {
  const TemporaryFolder folder;
  folder.Put("KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=192.168.1.20\r\nTries=0\r\n");
  DriverFixture fixture;
  const SessionLink session{.folder = folder.Path().string()};
  fixture.driver.ConfigureForSession(session);
  EXPECT_EQ(fixture.messages, std::vector<std::string>{"KvCmDrv1.ini, Tries: expected a number from 1 to 10; using 3"});
  const auto channel = fixture.driver.GetChannel();
  ASSERT_TRUE(channel);
  EXPECT_TRUE(channel->GetVersionInfo(1));
  EXPECT_EQ(fixture.driver.LinkDescription(), "192.168.1.20:20300, unit 1");
  fixture.driver.ConfigureForSession(session);
  EXPECT_EQ(fixture.driver.GetChannel(), channel);
  std::filesystem::copy(folder.Path(), folder.Path() / "copy");
  fixture.driver.ConfigureForSession({.folder = (folder.Path() / "copy").string()});
  EXPECT_NE(fixture.driver.GetChannel(), channel) << "of another session";
  fixture.driver.ConfigureForSession(session);
  folder.Put("KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=192.168.1.21\r\n");
  fixture.driver.ConfigureForSession(session);
  EXPECT_NE(fixture.driver.GetChannel(), channel);
  EXPECT_FALSE(channel->GetVersionInfo(1)) << "a channel of the link before";
  EXPECT_EQ(channel->LastError().happened, "the link is closed");
  EXPECT_FALSE(channel->OpenLink(0, 0));
}

TEST(Driver, GivesTheLinkBackThatATrialTook) {
  DriverFixture fixture;
  (void)fixture.driver.UseSettings(*ParseLink("tcp:plc"), false);
  const auto channel = fixture.driver.GetChannel();
  ASSERT_TRUE(channel && channel->GetVersionInfo(1));
  EXPECT_TRUE(fixture.driver.TryLink(*ParseLink("serial:COM3")));
  EXPECT_TRUE(channel->GetVersionInfo(1)) << channel->LastError().Text();
}

// The simulated controller of a new session would answer in the place of the plant's.
TEST(Driver, OpensNoLinkWhileTheSessionsSettingsCannotBeRead) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "KvCmDrv1.ini";
  std::filesystem::create_directory(file);
  DriverFixture fixture;
  const SessionLink session{.folder = folder.Path().string()};
  fixture.driver.ConfigureForSession(session);
  EXPECT_FALSE(fixture.driver.GetChannel());
  EXPECT_NE(fixture.driver.LastError().happened.find("KvCmDrv1.ini"), std::string::npos);
  EXPECT_EQ(fixture.driver.DescribeSession(session), "Link settings that cannot be read");
  std::filesystem::remove(file);
  folder.Put("KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=192.168.1.20\r\n");
  EXPECT_TRUE(fixture.driver.GetChannel()) << "it can be read again";
}

TEST(Driver, ASessionWithoutSettingsGetsASimulatedControllerOfItsModel) {
  DriverFixture fixture;
  const std::pair<SessionLink, std::string> cases[] = {
      {{.model = "Q51"}, "Simulated Q51"},       {{.model = "PR1"}, "Simulated PR1"},
      {{.isBrio = true}, "Simulated BRIO"},      {{.isCompactDriver = true}, "Simulated Q50"},
      {{.isColour = true}, "Simulated K450-45"}, {{}, "Simulated K220-22-R1"}};
  for (const auto& [session, link] : cases) {
    fixture.driver.ConfigureForSession(session);
    EXPECT_EQ(fixture.driver.LinkDescription(), link);
  }
}

// A dialog that chooses another speed.
struct ScriptedDialogs final : DriverDialogs {
  int shown = 0;
  std::optional<LinkSettings> EditLink(const LinkSettings&, const std::string&) override {
    ++shown;
    return UnusualSettings(Transport::Serial);
  }
  std::optional<LinkSettings> EditModem(const LinkSettings&, const std::string&) override { return std::nullopt; }
  void ShowTrace() override {}
};

TEST(Driver, DialogChangesAreKeptAndABusyLinkIsLeftAlone) {
  const TemporaryFolder folder;
  DriverFixture fixture;
  ScriptedDialogs dialogs;
  fixture.driver.SetDialogs(&dialogs);
  fixture.driver.ConfigureForSession({.folder = folder.Path().string()});
  fixture.driver.UseSettings(SerialSettings(), true);
  const auto channel = fixture.driver.GetChannel();
  ASSERT_TRUE(channel);
  channel->SetLinkBusy(true);
  fixture.driver.ShowComParams();
  EXPECT_EQ(dialogs.shown, 0);
  channel->SetLinkBusy(false);
  fixture.driver.ShowComParams();
  EXPECT_EQ(LoadSettings(folder.Path(), {}).settings, UnusualSettings(Transport::Serial));
  fixture.driver.ConfigureForSession({.folder = (folder.Path() / "gone").string()});
  fixture.driver.UseSettings(SerialSettings(), true);
  EXPECT_NE(fixture.messages.back().find("were not kept. "), std::string::npos) << fixture.messages.back();
}

}  // namespace
}  // namespace kv
