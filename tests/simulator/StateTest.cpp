#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "ControllerFixture.h"
#include "OsTransferBytes.h"
#include "tests/support/TemporaryFolder.h"

namespace sim::test {
namespace {

class State : public testing::Test {
 protected:
  SimulatorOptions Kept(const std::string& model) const {
    SimulatorOptions options = Options(model);
    options.stateFile = mFile.string();
    return options;
  }
  void SetContent(const std::string& content) const { mFolder.Put("state", content); }
  std::string Error(const std::string& model) const {
    const auto made = Controller::Create(Kept(model));
    return made ? "" : made.error();
  }

  kv::TemporaryFolder mFolder;
  std::filesystem::path mFile = mFolder.Path() / "state";
};

TEST_F(State, IsThereAgainAfterSwitchingOff) {
  std::string information;
  const std::string name(40, '4');  // of the longest that there are, in digits
  {
    Fixture fixture(Kept("Q51"));
    EXPECT_EQ(fixture.Text("DE"), "DEOK");
    fixture.Wait(std::chrono::seconds(2));
    EXPECT_EQ(fixture.Text("LN" + name), "LNOK");
    EXPECT_EQ(fixture.Text("LD00001001"), "LDOK");
    EXPECT_EQ(fixture.Text("CCR"), "CCOK");
    fixture.Write("0300000002", "12348001");
    fixture.Write("5100050001", "00000064");
    EXPECT_EQ(fixture.Text("CCS"), "CCOK");
    information = fixture.Own("IN", "");
    EXPECT_TRUE(fixture.It().SaveState());
  }
  Fixture fixture(Kept("Q51"));
  EXPECT_EQ(fixture.Own("IN", ""), information);
  EXPECT_EQ(information.substr(8), "S" + name);
  EXPECT_EQ(fixture.Read("0300000002"), "12348001");
  EXPECT_EQ(fixture.Read("5100050001"), "00000064");
  EXPECT_EQ(fixture.Text("RX0000000F").substr(0, 16), "RX0000000FFF01FF");
}

TEST_F(State, ADamagedFileIsRefusedWithItsPlace) {
  EXPECT_TRUE(Fixture(Kept("K330")).It().SaveState());
  const std::string good = kv::TemporaryFolder::Content(mFile);
  EXPECT_NE(Error("K390").find("line 2: \"model K390\" was expected"), std::string::npos);
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"KVSIM-STATE 1", "KVSIM-STATE 2", "line 1: \"KVSIM-STATE 1\""},
      {"serial ", "serial X", "line 3: a serial number of 8 digits"},
      {"build 19", "build 190", "line 5: a build from 0 to 99"},
      {"state R", "state Q", "line 7: \"state\""},
      {"project ", "project 4", "line 8: a project name"},
      {"cells SI 0020", "cells SI 01FF", "an address and values inside the area"},
      {"memory OP 00000000", "memory OP 00001790", "an offset and bytes inside the segment"},
      {"memory OP ", "memory OQ ", "the code of a segment"},
      {"cells TIMER-PRESET 0000 000003E8", "cells TIMER-PRESET 0000 000003E9", "the file is damaged"},
      {"check ", "chuck ", "\"check\" was expected"},
  };
  for (const auto& [from, to, error] : cases) {
    SCOPED_TRACE(to);
    std::string bad = good;
    ASSERT_NE(bad.find(from), std::string::npos);
    SetContent(bad.replace(bad.find(from), from.size(), to));
    EXPECT_NE(Error("K330").find(error), std::string::npos) << Error("K330");
  }
  for (std::size_t cut = 0; cut < good.size(); cut += good.size() / 20 + 1) {
    SetContent(good.substr(0, cut));
    EXPECT_NE(Error("K330"), "") << cut;
  }
  SetContent(good);
  EXPECT_EQ(Error("K330"), "");
}

}  // namespace
}  // namespace sim::test
