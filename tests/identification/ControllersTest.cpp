#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/Driver.h"
#include "desktop/VirtualPacer.h"
#include "link/identification/GoOnline.h"
#include "sessions/SessionIni.h"
#include "simulator/SimulatedController.h"
#include "tests/support/SessionBench.h"

namespace kv {
namespace {

// Going on line with a simulated controller, through the driver and its wire.
struct ControllersTest : testing::Test, test::SessionBench {
  test::CallLog GoOnlineWith(const sim::SimulatorOptions& options) {
    const auto made = sim::SimulatedController::Create(options);
    EXPECT_TRUE(made.has_value());
    VirtualPacer pacer;
    Driver real(pacer, [&](const std::string&) { return (*made)->NewLine(); }, nullptr);
    real.OnComMessage = [&](const std::string& message) { log.push_back("OnComMessage " + message); };
    shared.ComDriver = &real;
    ConfigureDriverForSession(shared, nullptr);
    Taken();
    GoOnline(shared, prompts);
    return Taken();
  }
};

TEST_F(ControllersTest, EveryKindOfControllerIsToldFromTheOthers) {
  struct Row {
    const char* hostModel;
    const char* model;
    const char* os;
    bool boot;
    const char* becomes;  // the host's model; empty: refused
    const char* told;     // a part of one of the calls
  };
  // clang-format off
  const Row rows[] = {
      {"K330", "K220-22-R1", "",     false, "K220-22-R1", "ConnectedUnit 1"},
      {"K330", "K220-22-R1", "2.90", false, "",           "2.91 and higher"},
      {"K330", "K220-22-R1", "",     true,  "",           "BOOTSTRAP mode"},
      {"K330", "K670-T40",   "",     false, "K670-67-T40 / K390-29-T40", "GoOnline"},
      {"K330", "K670-T40",   "0.99", false, "",           "1.0(19) and higher"},
      {"K330", "K670-T40",   "",     true,  "K670-67-C30 / K390-29-C30", "could not be prepared"},
      {"K330", "K230",       "",     false, "K230",       "GoOnline"},
      {"K330", "K230",       "0.99", false, "",           "1.0(19) and higher"},
      {"Q50",  "Q50",        "1.00", false, "Q50",        "ControllerInfoByte 3"},
      {"K330", "Q50",        "1.00", false, "K330",       "GoOnline"},
      {"K330", "BRIO",       "",     false, "BRIO",       "ControllerModelText BRIO-R16"},
      {"K330", "BRIO",       "",     true,  "BRIO",       "ControllerModelText BRBOOT"},
      {"PX1",  "PX1",        "",     false, "PX1-R8",     "GoOnline"},
  };
  // clang-format on
  for (const Row& row : rows) {
    sim::SimulatorOptions options;
    options.model = row.model;
    options.osVersion = row.os;
    options.boot = row.boot;
    host.online = false;
    host.model = row.hostModel;
    const std::string model = *row.becomes == '\0' ? row.hostModel : row.becomes;
    if (*row.becomes == '\0') prompts.Press(PromptAnswer::Ok);
    EXPECT_THAT(GoOnlineWith(options), testing::Contains(testing::HasSubstr(row.told))) << row.model;
    EXPECT_EQ(host.online, *row.becomes != '\0') << row.model;
    EXPECT_EQ(host.model, model) << row.model;
  }
}

TEST_F(ControllersTest, ASilentControllerIsReportedByTheDriverAndEndsTheSequence) {
  sim::SimulatorOptions other;
  other.unit = 9;
  const auto calls = GoOnlineWith(other);
  EXPECT_FALSE(host.online);
  EXPECT_THAT(calls, testing::Contains(testing::StartsWith("OnComMessage ")));
  EXPECT_THAT(calls, testing::Not(testing::Contains(testing::StartsWith("ConnectedUnit"))));
}

}  // namespace
}  // namespace kv
