#include "host/clsCallerExe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/ToolTable.h"
#include "tests/host/HostBench.h"

namespace kv {
namespace {

using test::CallLog;
using testing::ElementsAre;
using testing::IsEmpty;

struct CallerExeTest : testing::Test, test::HostBench {};

TEST_F(CallerExeTest, LivesItsLifeInOrder) {
  host.readsColourCaches = false;
  caller->StartUp();
  EXPECT_THAT(Taken(),
              ElementsAre("host made", "SessionName Default", "SessionPath HOME/Sessions/Default", "StartupOption 1",
                          "Model K330", "frmTAPI loaded", "driver made", "Driver active",
                          "Driver ConfigureForSession HOME/Sessions/Default", "ComDescription COM3, 115200 8N1, unit 1",
                          "ToolMissing ID_PLC_DB", "ToolMissing ID_ImportFontsAndImages", "RecentCaches 0", "Run",
                          "host released", "Driver not active", "Driver gone"));
  EXPECT_EQ(caller->Remote(), nullptr);
  EXPECT_EQ(callerState->ComDriver, nullptr);
  EXPECT_EQ(callerState->BitsHandler, nullptr);
}

TEST_F(CallerExeTest, SaysThatTheDefaultSessionIsMissingAndGoesOn) {
  std::filesystem::remove_all(Session("Default"));
  prompts.Press(PromptAnswer::Ok);
  caller->StartUp();
  const CallLog calls = Taken();
  EXPECT_THAT(calls, testing::Contains("Box (!) Telepanel: Default Session not found"));
  EXPECT_THAT(calls, testing::IsSupersetOf({"Model K220-22-R1", "Run", "Driver gone"}));
}

TEST_F(CallerExeTest, ClearsTheMarkOfTheSessionThatItEndsIn) {
  const auto mark = [&] { return std::filesystem::status(Session("Plant") / "tmp.txt").permissions(); };
  constexpr auto kWrite = std::filesystem::perms::owner_write;
  std::filesystem::create_directory(Session("Plant"));
  home.Put("Sessions/Plant/tmp.txt", "");
  std::filesystem::permissions(Session("Plant") / "tmp.txt", std::filesystem::perms::owner_read);
  CallsOf([&] {
    callerState->CurrentSession = "Plant";
    EXPECT_EQ(mark() & kWrite, std::filesystem::perms::none);
  });
  EXPECT_EQ(mark() & kWrite, kWrite);
}

TEST_F(CallerExeTest, UnknownIdsAndMissingToolsDoNothing) {
  for (const char* id : {"", "ID_Unknown", "id_session", "ID_SESSION", "ID_Session ", "escape", "ID_PLC_DB"}) {
    EXPECT_THAT(CallsOf(id, "x"), IsEmpty()) << id;
  }
  hasWindows = false;
  host.readsColourCaches = false;
  EXPECT_THAT(CallsOf([&] {
                for (const ToolRow& row : ToolTable()) {
                  if (row.window || row.need != ToolNeed::Nothing) host.OnToolClicked(std::string(row.id), "");
                }
              }),
              IsEmpty());
}

TEST_F(CallerExeTest, AfterExitNothingIsOpenedAnyMore) {
  EXPECT_THAT(CallsOf([&] {
                host.OnToolClicked("ID_Exit", "");
                host.OnToolClicked("ID_Session", "");
                madeDriver->OnComMessage("late");
                caller->mWinsock_ConnectionRequest(1);
              }),
              ElementsAre("Driver CloseDriver", "Quit", "Socket Close", "Socket Accept 1"));
  EXPECT_THAT(Taken(), ElementsAre("host released", "Driver not active", "Driver gone"));
}

TEST_F(CallerExeTest, PassesMessagesAndSettingsOn) {
  Put("KvTele2.ini", "[KvTele2]\r\nCaption= Plant \r\nEmpty=\r\n");
  EXPECT_THAT(CallsOf([&] {
                madeDriver->OnComMessage("no reply from COM3");
                EXPECT_EQ(caller->ReadFromRemoteIni("Caption", "0"), "Plant");
                EXPECT_EQ(caller->ReadFromRemoteIni("Empty", "0"), "");
                EXPECT_EQ(caller->ReadFromRemoteIni("Missing", "0"), "0");
              }),
              ElementsAre("StatusMessage no reply from COM3"));
}

TEST_F(CallerExeTest, TheSocketTakesOneConnectionAndListensAgain) {
  EXPECT_THAT(CallsOf([&] { caller->mWinsock_ConnectionRequest(5); }),
              ElementsAre("Socket Close", "Socket Accept 5", "StatusMessage Ethernet connection established"));
  const auto close = [&] { caller->mWinsock_Close(); };
  EXPECT_THAT(CallsOf(close),
              ElementsAre("Socket Close", "Socket Listen", "StatusMessage Ethernet connection terminated"));
  socketState = ListeningSocket::State::Connected;
  EXPECT_THAT(CallsOf(close), ElementsAre("Socket Close", "StatusMessage Ethernet connection terminated"));
  socketState = ListeningSocket::State::Closed;
  socketAccepts = false;  // the request has gone; the port has been taken by somebody else
  EXPECT_THAT(CallsOf([&] { caller->mWinsock_ConnectionRequest(6); }), ElementsAre("Socket Close", "Socket Accept 6"));
  EXPECT_THAT(CallsOf(close), ElementsAre("Socket Close", "Socket Listen", testing::HasSubstr("could not be opened")));
}

}  // namespace
}  // namespace kv
