#include "link/identification/GoOnline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ranges>

#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/SessionBench.h"

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
const std::string kC30 = "K670-67-C30 / K390-29-C30";

// A channel that writes its calls into the common log.
class LoggedChannel : public test::FakeChannel {
 public:
  explicit LoggedChannel(CallLog& log) : mLog(log) {}

  std::optional<CommandReply> SendCommand(std::string_view command) override {
    mLog.push_back("SendCommand " + std::string(command));
    return FakeChannel::SendCommand(command);
  }
  void SetCommandOwner(std::string_view owner) override { mLog.push_back("SetCommandOwner " + std::string(owner)); }
  void SetRecordFile(const std::string& path, int purpose) override {
    mLog.push_back("SetRecordFile " + path + " " + std::to_string(purpose));
  }
  std::optional<VersionInfo> GetVersionInfo(std::uint8_t asked) override {
    mLog.push_back("GetVersionInfo @" + std::to_string(asked));
    return FakeChannel::GetVersionInfo(asked);
  }

 private:
  CallLog& mLog;
};

struct GoOnlineTest : testing::Test, test::SessionBench {
  GoOnlineTest() {
    channel->unit = 7;
    driver.channel = channel;
  }

  CallLog CallsOfGoOnline() {
    GoOnline(shared, prompts);
    return Taken();
  }
  // The calls behind the ones with which every identified controller begins.
  CallLog CallsAfterIdentification(const VersionInfo& version, bool isRefused = false) {
    const CallLog beginning{"Hourglass on",       "BeginConnect",
                            "Driver GetChannel",  "EndConnect",
                            "Hourglass off",      "GetVersionInfo @7",
                            "ConnectedUnit 7",    "SetRecordFile HOME/Sessions/Default/CommDriver.txt 1",
                            "ControllerModelText"};
    channel->version = version;
    if (isRefused) prompts.Press(PromptAnswer::Ok);
    CallLog calls = CallsOfGoOnline();
    EXPECT_TRUE(std::ranges::equal(beginning, calls | std::views::take(beginning.size()))) << version.model;
    return {calls.begin() + static_cast<std::ptrdiff_t>(beginning.size()), calls.end()};
  }
  void StartOver(const std::string& hostModel) {
    host.online = false;
    host.model = hostModel;
    RemoveSessionIni(shared, "LastModel");
  }

  std::shared_ptr<LoggedChannel> channel = std::make_shared<LoggedChannel>(log);
};

VersionInfo Colour(const std::string& model, const std::string& version, const std::string& build) {
  return {.model = model, .osVersion = "HW 1.0;BT 1.2;FL 2.0;O/S " + version + ";", .osBuild = build};
}

TEST_F(GoOnlineTest, AcceptsAndRefusesByModelAndVersion) {
  struct Row {
    VersionInfo reported;
    std::string model;    // that the host gets; empty: refused
    std::string refusal;  // empty: accepted
  };
  const Row rows[] = {
      {{.model = "K220-22-R1", .osVersion = "4.60"}, "K220-22-R1", ""},
      {{.model = "K220-22-R1", .osVersion = "2.91"}, "K220-22-R1", ""},
      {{.model = "K220-22-R1", .osVersion = "2.90"}, "", kOldPlain},
      {{.model = "K220-22-R1", .osVersion = "2.9"}, "", kOldPlain},   // the digits count: 29
      {{.model = "K220-22-R1", .osVersion = "10.1"}, "", kOldPlain},  // and 101
      {{.model = "K220-22-R1", .osVersion = "4.6 beta"}, "", kOldPlain},
      {{.model = "K220-22-R1", .osVersion = ""}, "", kOldPlain},
      {{.model = "PX1-R8", .osVersion = "3.00"}, "PX1-R8", ""},
      {Colour(kT40, "1.0", "B19;"), kT40, ""},
      {Colour(kT40, "1.0", "19"), kT40, ""},
      {Colour(kT40, "1.0", "B18;"), "", kOldColour},
      {Colour(kT40, " 1.10 ", "B00;"), kT40, ""},
      {Colour(kT40, "1.10", "xx"), "", kOldColour},
      {Colour(kT40, "1,10", "B19;"), "", kOldColour},
      {Colour(kT40, "99999999999.0", "B19;"), "", kOldColour},
      {{.model = kT40, .osVersion = "4.60", .osBuild = "19"}, "", kOldColour},
      {Colour("K230-1", "1.2", "B05;"), "K230-1", ""},
      {{.model = "K230-1", .osVersion = "4.60", .osBuild = "19"}, "", kOldColour},
      {Colour("K2040", "1.10", "B19;"), "K2040", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.reported.model + " " + row.reported.osVersion + " " + row.reported.osBuild);
    StartOver("K330");
    const bool isRefused = !row.refusal.empty();
    EXPECT_EQ(CallsAfterIdentification(row.reported, isRefused),
              isRefused ? (CallLog{"AttachChannel", row.refusal})
                        : (CallLog{"AttachChannel", "Model " + row.model, "GoOnline", "RunPanelSession 0"}));
    EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), row.model);
  }
}

TEST_F(GoOnlineTest, ABootLoaderIsRefusedOrStandsForItsModel) {
  for (const char* model : {"BOOT", "FACTORY BOOT"}) {
    EXPECT_EQ(CallsAfterIdentification({.model = model}, true), CallLog{kBoot});
  }
  std::filesystem::create_directory(home.Path() / "TP_Temp");
  home.Put("TP_Temp/TP_Temp_1", "empty");
  AddRecentCache(shared, "/nowhere.ktc");
  for (const auto& [reported, used] : {std::pair("CLR BOOT", kC30.c_str()), std::pair("K450-45-BOOT", "K450-45"),
                                       std::pair("K530-J-BOOT", "K530-J")}) {
    StartOver("K330");
    Put("DOS_TEMP", "what was there");
    EXPECT_EQ(CallsAfterIdentification(Colour(reported, "1.10", "B20;")),
              (CallLog{"AttachChannel", std::string("Model ") + used, "GoOnline",
                       "PanelData HOME/Sessions/Default/DOS_TEMP", "RunPanelSession 0"}));
    EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "DOS_TEMP"), "empty");
  }
}

TEST_F(GoOnlineTest, AColourPanelDrawsFromACopyOfTheMostRecentCache) {
  AddRecentCache(shared, Utf8FromPath(home.Put("plant.ktc", "fonts")) + "*Plant");
  const CallLog expected{"AttachChannel", "Model " + kT40, "GoOnline", "PanelData HOME/Sessions/Default/APP_TEMP.ktc",
                         "RunPanelSession 0"};
  EXPECT_EQ(CallsAfterIdentification(Colour(kT40, "1.10", "B20;")), expected);
  EXPECT_EQ(TemporaryFolder::Content(Session("Default") / "APP_TEMP.ktc"), "fonts");

  StartOver("K330");
  std::filesystem::remove(home.Path() / "plant.ktc");
  EXPECT_THAT(
      CallsAfterIdentification(Colour(kT40, "1.10", "B20;")),
      testing::Contains(testing::StartsWith("StatusMessage The panel data could not be prepared: HOME/plant.ktc")));
}

TEST_F(GoOnlineTest, CompactControllersAreAskedForTheirPanelInsteadOfTheirVersion) {
  struct Row {
    const char* hostModel;
    const char* reported;
    CallLog expected;
  };
  const CallLog systemRead{"ControllerInfoByte -1", "SetCommandOwner Korvantis", "SendCommand DRS000020"};
  const auto after = [&](const CallLog& before, const CallLog& rest) {
    CallLog all = before;
    all.insert(all.end(), systemRead.begin(), systemRead.end());
    all.insert(all.end(), rest.begin(), rest.end());
    return all;
  };
  const Row rows[] = {
      {"Q50", "Q50-2-R34",
       after({"AttachChannel"},
             {"ControllerInfoByte 11", "CompactIdentification on", "GoOnline", "RunPanelSession 0"})},
      {"AurexQ50", "K220-22-R1",
       after({"AttachChannel"},
             {"ControllerInfoByte 11", "CompactIdentification off", "GoOnline", "RunPanelSession 0"})},
      {"K330", "BRIO-R16",
       after({"Model BRIO", "ControllerModelText BRIO-R16", "AttachChannel"},
             {"ControllerInfoByte 11", "CompactIdentification on", "ControllerModelText BRIO-R16", "GoOnline",
              "RunPanelSession 0"})},
      {"K330", "Brio-R16",
       after({"Model BRIO", "ControllerModelText Brio-R16", "AttachChannel"},
             {"ControllerInfoByte 11", "CompactIdentification on", "GoOnline", "RunPanelSession 0"})},
      {"K330", "Q51-2-R34", {"AttachChannel", "GoOnline", "RunPanelSession 0"}},
      {"Q51", "Q50-2-R34", {"AttachChannel", "GoOnline", "RunPanelSession 0"}},
  };
  channel->reply = CommandReply{.text = "DR" + std::string(52, '0') + "0B" + std::string(10, '0') + "C4"};
  for (const Row& row : rows) {
    StartOver(row.hostModel);
    EXPECT_EQ(CallsAfterIdentification({.model = row.reported, .osVersion = "1.00"}), row.expected) << row.reported;
    EXPECT_EQ(ReadSessionIni(shared, "LastModel", ""), "") << row.reported;
  }

  for (const auto& reply : {std::optional<CommandReply>(), std::optional(CommandReply{.text = "DRERROR0BC4"}),
                            std::optional(CommandReply{.text = "DR0B0BC4"}),
                            std::optional(CommandReply{.text = "DR" + std::string(64, 'x') + "C4"})}) {
    StartOver("Q50");
    channel->reply = reply;
    EXPECT_EQ(std::ranges::count(CallsAfterIdentification({.model = "Q50-2-R34"}), "ControllerInfoByte -1"), 2);
  }
}

TEST_F(GoOnlineTest, AnotherProjectIsRefusedInBothFamilies) {
  host.projectMatches = false;
  EXPECT_EQ(CallsAfterIdentification({.model = "K330", .osVersion = "4.60"}, true),
            (CallLog{"AttachChannel", "Model K330", kOtherProject}));
  StartOver("Q50");
  EXPECT_EQ(CallsAfterIdentification({.model = "Q50-2-R34"}, true).back(), kOtherProject);
}

TEST_F(GoOnlineTest, StopsSilentlyWithoutAController) {
  const CallLog lookup{"Hourglass on", "BeginConnect", "Driver GetChannel", "EndConnect", "Hourglass off"};
  CallLog asked = lookup;
  asked.push_back("GetVersionInfo @7");
  EXPECT_EQ(CallsOfGoOnline(), asked);
  driver.channel = nullptr;
  EXPECT_EQ(CallsOfGoOnline(), lookup);
}

TEST_F(GoOnlineTest, AHostThatIsOnLineGoesToItsPanelWithTheCaptionOfTheSession) {
  Put("KvTele2.ini", "[KvTele2]\r\nCaption=Pump house\r\nSupportAddress=help@plant.example\r\n");
  host.online = true;
  EXPECT_EQ(CallsOfGoOnline(), CallLog{"RunPanelSession Pump house"});
  host.online = false;
  EXPECT_THAT(CallsAfterIdentification({.model = "K330", .osVersion = "1.00"}, true).back(),
              testing::EndsWith("contact your supplier or help@plant.example."));
}

}  // namespace
}  // namespace kv
