#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

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
    if (!made) throw std::runtime_error(made.error());
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
    sim::SimulatorOptions controller;
    const char* refusal;  // empty: on line
    const char* model;    // that the host has then
    const char* told;     // the beginning of one of the calls
  };
  const auto simulated = [](const char* model, const char* os, int build, bool isBoot) {
    sim::SimulatorOptions options;
    options.model = model;
    options.osVersion = os;
    options.osBuild = build;
    options.boot = isBoot;
    return options;
  };
  const auto usual = [&](const char* model) { return simulated(model, "", 19, false); };
  const auto boot = [&](const char* model) { return simulated(model, "", 19, true); };
  const char* const kBoot = "BOOTSTRAP mode";
  const char* const kOld = "2.91 and higher";
  const char* const kOldColour = "1.0(19) and higher";
  const char* const kC30 = "K670-67-C30 / K390-29-C30";
  const char* const kT40 = "K670-67-T40 / K390-29-T40";
  const Row rows[] = {
      {"K330", usual("K220-22-R1"), "", "K220-22-R1", "ConnectedUnit 1"},
      {"K330", simulated("K220-22-R1", "2.91", 0, false), "", "K220-22-R1", ""},
      {"K330", simulated("K220-22-R1", "2.90", 0, false), kOld, "K330", ""},
      {"K330", boot("K220-22-R1"), kBoot, "K330", ""},
      {"K330", usual("K670-T40"), "", kT40, ""},
      {"K330", simulated("K670-T40", "1.0", 18, false), kOldColour, "K330", ""},
      {"K330", boot("K670-T40"), "", kC30, "Model K670-67-C30 / K390-29-C30"},
      {"K330", boot("K450-45"), "", "K450-45", ""},
      {"K330", boot("K2040"), "", "K2040 BOOT", ""},
      {"K330", usual("K230"), "", "K230", ""},
      {"K330", simulated("K230", "0.99", 99, false), kOldColour, "K330", ""},
      {"Q50", usual("Q50"), "", "Q50", "ControllerInfoByte 3"},
      {"K330", usual("Q50"), "", "K330", ""},
      {"Q50", simulated("Q50", "1.00", 1, false), "", "Q50", "CompactIdentification on"},
      {"K330", usual("BRIO"), "", "BRIO", "ControllerModelText BRIO-R16"},
      {"K330", boot("BRIO"), "", "BRIO", "ControllerModelText BRBOOT"},
      {"PX1", usual("PX1"), "", "PX1-R8", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.controller.model + " " + row.controller.osVersion + (row.controller.boot ? " boot" : ""));
    host.online = false;
    host.model = row.hostModel;
    const bool isRefused = *row.refusal != '\0';
    if (isRefused) prompts.Press(PromptAnswer::Ok);
    const auto calls = GoOnlineWith(row.controller);
    EXPECT_EQ(host.online, !isRefused);
    EXPECT_EQ(host.model, row.model);
    EXPECT_THAT(calls, testing::Contains(testing::HasSubstr(isRefused ? row.refusal : "RunPanelSession 0")));
    EXPECT_THAT(calls, testing::Contains(testing::StartsWith(row.told)));
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
