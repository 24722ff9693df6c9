#include "host/clsCallerExe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/HostFixture.h"

namespace kv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CallerExeTest : testing::Test, test::HostFixture {};

TEST_F(CallerExeTest, LivesItsLifeInOrder) {
  Put("KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K330\r\n");
  host.readsColourCaches = false;
  home.Put("PID Server.exe", "");  // the one program of two that is installed
  host.toolIds = {"ID_OnLine",           "ID_DataTypes",           "ID_LogIn", "ID_PLC_DB", "ID_PID_Srv",
                  "ID_DownloadDesigner", "ID_ImportFontsAndImages"};
  clsCallerExe caller(parts);
  caller.StartUp();
  EXPECT_THAT(Taken(),
              ElementsAre("host made", "SessionName Default", "SessionPath HOME/Sessions/Default", "StartupOption 1",
                          "Model K330", "frmTAPI loaded", "driver made", "Driver active",
                          "Driver ConfigureForSession HOME/Sessions/Default", "ComDescription COM3, 115200 8N1, unit 1",
                          "ToolMissing ID_LogIn", "ToolMissing ID_PLC_DB", "ToolMissing ID_DownloadDesigner",
                          "ToolMissing ID_ImportFontsAndImages", "RecentCaches 0", "Run", "host released",
                          "Driver not active", "Driver gone"));
  EXPECT_EQ(caller.Remote(), nullptr);
  EXPECT_EQ(callerState->BitsHandler, nullptr);
}

TEST_F(CallerExeTest, ClearsTheMarkOfTheSessionThatItEndsIn) {
  constexpr auto kWrite = std::filesystem::perms::owner_write;
  std::filesystem::create_directory(Session("Plant"));
  const auto mark = home.Put("Sessions/Plant/tmp.txt", "");
  std::filesystem::permissions(mark, kWrite, std::filesystem::perm_options::remove);
  CallsOf([&](clsCallerExe&) { callerState->CurrentSession = "Plant"; });
  EXPECT_EQ(std::filesystem::status(mark).permissions() & kWrite, kWrite);
}

TEST_F(CallerExeTest, AfterExitNothingIsOpenedAnyMore) {
  EXPECT_THAT(CallsOf([&](clsCallerExe& caller) {
                host.OnToolClicked("ID_Exit", "");
                host.OnToolClicked("ID_DataTypes", "");
                shared.ComDriver->OnComMessage("late");
                caller.mWinsock_ConnectionRequest(1);
              }),
              ElementsAre("Driver CloseDriver", "Quit", "Socket Close", "Socket Accept 1"));
  EXPECT_THAT(Taken(), ElementsAre("host released", "Driver not active", "Driver gone"));
}

TEST_F(CallerExeTest, TheSocketTakesOneConnectionAndListensAgain) {
  const std::string established = "StatusMessage Ethernet connection established";
  const std::string terminated = "StatusMessage Ethernet connection terminated";
  const auto notOpened = testing::HasSubstr("could not be opened again");
  EXPECT_THAT(CallsOf([&](clsCallerExe&) {
                socket->OnConnectionRequest(5);
                socket->OnClose();
                socket->state = ListeningSocket::State::Connected;
                socket->OnClose();
              }),
              ElementsAre("Socket Close", "Socket Accept 5", established, "Socket Close", "Socket Listen", terminated,
                          "Socket Close", terminated));
  EXPECT_THAT(CallsOf([&](clsCallerExe&) {
                socket->succeeds = false;  // the request has gone; the port has been taken by somebody else
                socket->OnConnectionRequest(6);
                socket->OnClose();
              }),
              ElementsAre("Socket Close", "Socket Accept 6", "Socket Listen", notOpened, "Socket Close",
                          "Socket Listen", terminated, notOpened));
}

}  // namespace
}  // namespace kv
