#include "KvCmDrv1/Driver.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "Fixture.h"
#include "KvCmDrv1/LinkText.h"
#include "KvCmDrv1/RoundTrip.h"
#include "KvCmDrv1/SettingsFile.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace std::chrono_literals;

// How it is printed and described again, or what was expected instead, stands in the record.
TEST(LinkText, IsParsedPrintedAndDescribed) {
  const std::pair<std::string, std::vector<const char*>> rows[] = {
      {"", {"", "COM3", "TCP:plc"}},
      {"sim:", {"", "K670 / K390"}},
      {"tcp:", {"192.168.1.20:20301", "plc", "plc:1", "plc:65535", "[::1]:5", "[::1]", "[::1]:0"}},
      {"tcp:", {"", ":20300", "host:0", "host:65536", "host:", "::1:5", "[::1", "[::1]x", "[]", "[]:5"}},
      {"serial:",
       {"COM3", "/dev/ttyS3,9600,7E2", "\"a,\"\"b\",300", "a\"b", "COM3,300", "COM3,921600,8O1", "\"\"\"a\""}},
      {"serial:",
       {"", ",9600", "COM3,299", "COM3,921601", "COM3,", "COM3,9600,", "COM3,9600,8N1,x", "\"a\"b", "\"\"", "\"a"}},
      {"serial:COM3,9600,", {"8N1", "6N1", "9N1", "7N0", "7N3", "7X1", "8E2", "8n1", "8N", "8N11"}},
      {"modem:",
       {"COM4,0123456,19200", "COM4,0123,9600,AT&F", "COM4,\"0,1\",9600,\"AT,E 0\"", "COM4,01", "COM4,\"01\",9600"}},
      {"modem:",
       {"COM3", "COM3,", ",0123", "COM3,0,12345", "COM3,0,9600", "COM3,01,9600", "COM3,012,9600", "COM3,0123,45678"}},
      {"modem:", {"COM3,\"0,1", "COM3,0123,230400", "COM3,0123,230401", "COM3,0123,100", "a,0123,9600,AT,b"}},
      {"modem:COM3,0123,9600,", {"", "45", "AT,E0", "AT\r", "at&f", "aT", "\"\"", "\"X0\"", "AT \x1F", "AT\xE4"}},
      {"listen:", {"", "x", "0", "1", "65535", "65536", "20302"}},
  };
  std::string told;
  for (const auto& [kind, rests] : rows) {
    for (const char* rest : rests) {
      const auto parsed = ParseLink(kind + rest);
      EXPECT_TRUE(!parsed || ParseLink(PrintLink(*parsed)) == parsed) << kind << rest;
      told += test::Shown(kind + rest) + ": ";
      told += parsed ? test::Shown(PrintLink(*parsed)) + "; " + test::Shown(DescribeLink(*parsed)) : parsed.error();
      told += "\n";
    }
  }
  test::ExpectAsRecorded([&told] { return test::Replaced(told, "\r", "<0D>"); });
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
  const auto add = [](const std::string& all, const std::string& each) { return all + each + "\n"; };
  test::ExpectAsRecorded(
      [&] { return std::accumulate(loaded.complaints.begin(), loaded.complaints.end(), std::string(), add); });
  for (const Transport transport :
       {Transport::Simulated, Transport::Tcp, Transport::Serial, Transport::Modem, Transport::Listen}) {
    EXPECT_TRUE(SaveSettings(folder.Path(), UnusualSettings(transport)));
    EXPECT_EQ(LoadSettings(folder.Path(), {}).settings, UnusualSettings(transport));
    test::ExpectAsRecorded([&] { return TemporaryFolder::Content(folder.Path() / "KvCmDrv1.ini"); });
  }
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
  ~DriverFixture() {
    test::ExpectAsRecorded([this] {
      std::string all = test::TrafficText(driver.GetTrace().Text());
      for (const std::string& message : messages) all += message + "\n";
      return all + driver.LastError().Text() + "\n";
    });
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
  for (const std::string link : {"tcp:plc", "serial:COM3", "modem:COM3,\"0123\"", "listen:20300"}) {
    DriverFixture fixture;
    (void)fixture.driver.UseSettings(*ParseLink(link), false);
    const auto channel = fixture.driver.GetChannel();
    ASSERT_TRUE(channel && channel->GetVersionInfo(1));
    EXPECT_TRUE(fixture.driver.TryLink(*ParseLink(link)));
    EXPECT_EQ(fixture.plant.connections, 1) << "the link that is open is tried";
    EXPECT_TRUE(fixture.driver.TryLink(*ParseLink("serial:COM4")));
    const bool comesBack = link.starts_with("tcp") || link.starts_with("serial");
    EXPECT_EQ(fixture.plant.connections, comesBack ? 3 : 2) << link;
    fixture.plant.isSilent = true;
    EXPECT_FALSE(fixture.driver.TryLink(*ParseLink("serial:COM4")));
  }
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
  fixture.driver.SetDriverActive(false);
  EXPECT_FALSE(fixture.driver.GetChannel());
}

// A dialog that chooses another speed.
struct ScriptedDialogs final : DriverDialogs {
  int shown = 0;
  std::optional<LinkSettings> EditLink(const LinkSettings&, const std::string&) override {
    ++shown;
    return UnusualSettings(Transport::Serial);
  }
  std::optional<LinkSettings> EditModem(const LinkSettings&, const std::string&) override {
    shown += 10;
    return std::nullopt;
  }
  void ShowTrace() override {}
};

TEST(Driver, DialogChangesAreKeptAndABusyLinkIsLeftAlone) {
  const TemporaryFolder folder;
  DriverFixture fixture;
  ScriptedDialogs dialogs;
  fixture.driver.ShowComParams();  // to nobody
  fixture.driver.SetDialogs(&dialogs);
  fixture.driver.ConfigureForSession({.folder = folder.Path().string()});
  fixture.driver.UseSettings(SerialSettings(), true);
  const auto channel = fixture.driver.GetChannel();
  ASSERT_TRUE(channel);
  channel->SetLinkBusy(true);
  fixture.driver.ShowComParams();
  fixture.driver.ShowModemSettings();
  EXPECT_EQ(dialogs.shown, 0);
  channel->SetLinkBusy(false);
  fixture.driver.ShowComParams();
  fixture.driver.ShowModemSettings();
  EXPECT_EQ(dialogs.shown, 11);
  EXPECT_EQ(LoadSettings(folder.Path(), {}).settings, UnusualSettings(Transport::Serial));
  fixture.driver.ConfigureForSession({.folder = (folder.Path() / "gone").string()});
  fixture.driver.UseSettings(SerialSettings(), true);
  EXPECT_NE(fixture.messages.back().find("were not kept. "), std::string::npos) << fixture.messages.back();
}

}  // namespace
}  // namespace kv
