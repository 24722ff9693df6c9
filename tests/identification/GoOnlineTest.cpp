#include "link/identification/GoOnline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/SessionFixture.h"

namespace kv {
namespace {

using test::CallLog;

const std::string kOldColour =
    "Box (!) Telepanel: Telepanel is supported by controller Operating Systems (O/S) 1.0(19) and higher. The O/S "
    "currently installed in this controller does not support Telepanel. \r\nFor more information, contact your "
    "supplier "
    "or support@korvantis.example.";
const std::string kOldPlain =
    "Box (!) Telepanel: Telepanel is supported by controller Operating Systems (O/S) 2.91 and higher. The O/S "
    "currently "
    "installed in this controller does not support Telepanel. \r\nFor more information, contact your supplier or "
    "support@korvantis.example.";
const std::string kBoot = "Box (!) Telepanel: You cannot access this PLC because it is currently in BOOTSTRAP mode.";
const std::string kOtherProject =
    "Box (!) Telepanel: The Telepanel file does not match the project currently installed in the controller.";
const std::string kT40 = "K670-67-T40 / K390-29-T40";

// A channel that writes what this sequence may ask of it into the common log.
class LoggedChannel : public test::FakeChannel {
 public:
  explicit LoggedChannel(CallLog& log) : mLog(log) { unit = 7; }

  std::optional<CommandReply> SendCommand(std::string_view command) override {
    mLog.push_back("SendCommand " + std::string(command));
    return reply;
  }
  void SetCommandOwner(std::string_view owner) override { mLog.push_back("SetCommandOwner " + std::string(owner)); }
  void SetRecordFile(const std::string& path, int purpose) override {
    mLog.push_back("SetRecordFile " + path + " " + std::to_string(purpose));
  }
  std::optional<VersionInfo> GetVersionInfo(std::uint8_t asked) override {
    mLog.push_back("GetVersionInfo @" + std::to_string(asked));
    return version;
  }

 private:
  CallLog& mLog;
};

const CallLog kLookup{"Hourglass on", "BeginConnect", "Driver GetChannel", "EndConnect", "Hourglass off"};

struct GoOnlineTest : testing::Test, test::SessionFixture {
  GoOnlineTest() { driver.channel = channel; }

  CallLog Calls() {
    GoOnline(shared, prompts);
    return Taken();
  }
  // With a host set to `hostModel`: the calls behind those with which every identified controller begins.
  CallLog CallsFor(const VersionInfo& version, bool isRefused = false, const char* hostModel = "K330") {
    host.online = false;
    host.model = hostModel;
    channel->version = version;
    if (isRefused) prompts.Press(PromptAnswer::Ok);
    CallLog beginning = kLookup;
    beginning.insert(beginning.end(), {"GetVersionInfo @7", "ConnectedUnit 7",
                                       "SetRecordFile HOME/Sessions/Default/CommDriver.txt 1", "ControllerModelText"});
    CallLog calls = Calls();
    const auto rest = calls.begin() + static_cast<std::ptrdiff_t>(beginning.size());
    EXPECT_EQ(CallLog(calls.begin(), rest), beginning);
    return {rest, calls.end()};
  }

  std::shared_ptr<LoggedChannel> channel = std::make_shared<LoggedChannel>(log);
};

VersionInfo Plain(const std::string& model, const std::string& version) {
  return {.model = model, .osVersion = version, .osBuild = "19"};
}
VersionInfo Colour(const std::string& model, const std::string& version, const std::string& build) {
  return {.model = model, .osVersion = "HW 1.0;BT 1.2;FL 2.0;O/S " + version + ";", .osBuild = build};
}

TEST_F(GoOnlineTest, AcceptsAndRefusesByModelAndVersion) {
  const std::pair<VersionInfo, std::string> rows[] = {
      {Plain("K220-22-R1", "2.91"), ""},
      {Plain("K220-22-R1", "2.90"), kOldPlain},
      {Plain("K220-22-R1", "2.9"), kOldPlain},   // the digits count: 29
      {Plain("K220-22-R1", "10.1"), kOldPlain},  // and 101
      {Plain("K220-22-R1", "4.6 beta"), kOldPlain},
      {Plain("K220-22-R1", ""), kOldPlain},
      {Colour(kT40, "1.0", "B19;"), ""},
      {Colour(kT40, "1.0", "B18;"), kOldColour},
      {Colour(kT40, " 1.10 ", "0"), ""},
      {Colour(kT40, "1.10", "xx"), kOldColour},
      {Colour(kT40, "99999999999.0", "B19;"), kOldColour},
      {Plain(kT40, "4.60"), kOldColour},
      {Colour("K230-1", "1.2", "B05;"), ""},
      {Plain("K230-1", "4.60"), kOldColour},
      {Colour("K2040", "1.10", "B19;"), ""},
  };
  for (const auto& [reported, refusal] : rows) {
    ASSERT_TRUE(RemoveSessionIni(shared, "LastModel"));
    host.refusal.clear();
    EXPECT_EQ(CallsFor(reported, !refusal.empty()),
              refusal.empty() ? (CallLog{"AttachChannel", "Model " + reported.model, "GoOnline", "RunPanelSession 0"})
                              : (CallLog{"AttachChannel", refusal}))
        << reported.model << " " << reported.osVersion << " " << reported.osBuild;
    EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), refusal.empty() ? reported.model : "");
    EXPECT_EQ(host.refusal.empty() ? "" : "Box (!) Telepanel: " + host.refusal, refusal);
  }
}

TEST_F(GoOnlineTest, ABootLoaderIsRefusedOrStandsForItsModel) {
  EXPECT_EQ(CallsFor(Plain("BOOT", "4.60"), true), CallLog{kBoot});
  EXPECT_EQ(CallsFor(Plain("FACTORY BOOT", "4.60"), true), CallLog{kBoot});
  std::filesystem::create_directory(home.Path() / "TP_Temp");
  home.Put("TP_Temp/TP_Temp_1", "empty");
  EXPECT_TRUE(AddRecentCache(shared, "/nowhere.ktc"));  // is not what a controller without an O/S draws from
  for (const auto& [reported, used] : {std::pair("CLR BOOT", "K670-67-C30 / K390-29-C30"),
                                       std::pair("K450-45-BOOT", "K450-45"), std::pair("K530-J-BOOT", "K530-J")}) {
    const auto file = Put("DOS_TEMP", "what was there");
    EXPECT_EQ(CallsFor(Colour(reported, "1.10", "B20;")),
              (CallLog{"AttachChannel", std::string("Model ") + used, "GoOnline",
                       "PanelData HOME/Sessions/Default/DOS_TEMP", "RunPanelSession 0"}));
    EXPECT_EQ(TemporaryFolder::Content(file), "empty");
  }
}

TEST_F(GoOnlineTest, AColourPanelDrawsFromACopyOfTheMostRecentCache) {
  EXPECT_TRUE(AddRecentCache(shared, Utf8FromPath(home.Put("plant.ktc", "fonts")) + "*Plant"));
  EXPECT_THAT(CallsFor(Colour(kT40, "1.10", "B20;")),
              testing::Contains("PanelData HOME/Sessions/Default/APP_TEMP.ktc"));
  EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "APP_TEMP.ktc"), "fonts");
  host.fittingCache = Utf8FromPath(home.Put("fits.ktc", "of this model"));
  CallsFor(Colour(kT40, "1.10", "B20;"));
  EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "APP_TEMP.ktc"), "of this model");
  host.fittingCache.clear();
  std::filesystem::remove(home.Path() / "plant.ktc");
  EXPECT_THAT(CallsFor(Colour(kT40, "1.10", "B20;")),
              testing::Contains(testing::HasSubstr("panel data could not be prepared: HOME/plant.ktc")));
}

TEST_F(GoOnlineTest, CompactControllersAreAskedForTheirPanelInsteadOfTheirVersion) {
  const CallLog read{"AttachChannel", "ControllerInfoByte -1", "SetCommandOwner Korvantis", "SendCommand DRS000020",
                     "ControllerInfoByte 11"};
  const CallLog online{"GoOnline", "RunPanelSession 0"};
  const auto join = [](CallLog all, const CallLog& middle, const CallLog& end) {
    all.insert(all.end(), middle.begin(), middle.end());
    all.insert(all.end(), end.begin(), end.end());
    return all;
  };
  channel->reply = CommandReply{.text = "DR" + std::string(52, '0') + "0B" + std::string(10, '0') + "C4"};
  EXPECT_EQ(CallsFor(Plain("Q50-2-R34", "1.00"), false, "Q50"), join(read, {"CompactIdentification on"}, online));
  EXPECT_EQ(CallsFor(Plain("K330", "1.00"), false, "AurexQ50"), join(read, {"CompactIdentification off"}, online));
  EXPECT_EQ(CallsFor(Plain("Br-R16", "1.00")),
            join({"Model BRIO", "ControllerModelText Br-R16"}, read, join({"CompactIdentification on"}, online, {})));
  const auto brio = CallsFor(Plain("BRIO-R16", "1.00"));
  EXPECT_EQ(std::ranges::count(brio, "ControllerModelText BRIO-R16"), 2);
  EXPECT_EQ(CallsFor(Plain("Q51-2-R34", "1.00"), false, "Q51"), join({"AttachChannel"}, online, {}));
  EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), "");

  for (const char* text : {"DRERROR0BC4", "DR0B0BC4", "DR0102030405060708090A0B0C0D0E0F101112131415161718191Ax?C4",
                           "DR0102030405060708090A0B0C0D0E0F101112131415161718191AC4"}) {
    channel->reply = CommandReply{.text = text};
    EXPECT_EQ(std::ranges::count(CallsFor(Plain("Q50-2-R34", ""), false, "Q50"), "ControllerInfoByte -1"), 2) << text;
  }
}

TEST_F(GoOnlineTest, AnotherProjectIsRefusedInBothFamilies) {
  host.projectMatches = false;
  EXPECT_EQ(CallsFor(Plain("K330", "4.60"), true), (CallLog{"AttachChannel", "Model K330", kOtherProject}));
  EXPECT_EQ(CallsFor(Plain("Q50-2-R34", "1.00"), true, "Q50").back(), kOtherProject);
}

TEST_F(GoOnlineTest, StopsSilentlyWithoutAController) {
  CallLog asked = kLookup;
  asked.push_back("GetVersionInfo @7");
  EXPECT_EQ(Calls(), asked);
  driver.channel = nullptr;
  EXPECT_EQ(Calls(), kLookup);
}

TEST_F(GoOnlineTest, AHostThatIsOnLineGoesToItsPanelWithTheCaptionOfTheSession) {
  Put("KvTele2.ini", "[KvTele2]\r\nCaption=Pump house\r\nSupportAddress=help@plant.example\r\n");
  host.online = true;
  EXPECT_EQ(Calls(), CallLog{"RunPanelSession Pump house"});
  EXPECT_THAT(CallsFor(Plain("K330", "1.00"), true).back(), testing::EndsWith("supplier or help@plant.example."));
}

}  // namespace
}  // namespace kv
