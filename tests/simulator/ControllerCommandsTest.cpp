#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ControllerFixture.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

TEST(ControllerCommands, RefuseByShapeAndByWhatCameBefore) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"K330", "", "XY12", "XYERROR01"},         {"K330", "", "X", "XERROR01"},
      {"K330", "", "IDX", "IDERROR01"},          {"AurexQ50", "", "DI", "DIERROR0E"},
      {"K330", "", "DRS00002", "DRERROR02"},     {"K330", "", "IN12G400000000", "INERROR02"},
      {"K330", "", "DRS00F020", "DRERROR04"},    {"K330", "", "DRS000000", "DRERROR04"},
      {"Q51", "CCM", "LN41", "LNERROR09"},       {"Q51", "CCM", "LD00000041", "LDERROR09"},
      {"Q51", "CCS", "FW00000001", "FWERROR02"},
  };
  for (const auto& [model, before, text, reply] : cases) {
    Fixture fixture(model);
    if (!before.empty()) fixture.Text(before);
    EXPECT_EQ(fixture.Text(text), reply) << model;
  }
  Fixture project("K330");
  EXPECT_EQ(project.Block(66, 0, 0, 0, 0, "PASSWORD").status, 10);
  EXPECT_EQ(project.Text("ED"), "EDERROR09") << "a load, but no restore";
}

TEST(ControllerCommands, ResourcesAreRefusedOutsideOfThem) {
  Fixture fixture("TQ45");
  EXPECT_EQ(fixture.Block(259, 0, 4097, 1, 1).status, 128 + 4);
  EXPECT_EQ(fixture.Block(259, 0, 0, 2, 9).status, 128 + 4);
  EXPECT_EQ(fixture.Block(259, 0x10000000, 1, 1, 1).status, 128 + 0x0B);
  EXPECT_EQ(fixture.Block(259, 0, 1, 1, 99).status, 128 + 0x0B);
  EXPECT_EQ(fixture.Block(258, 0, 0, 3).status, 128 + 2);
  EXPECT_EQ(fixture.Block(259, 0, 0, 3, 9).status, 128 + 2);
  EXPECT_EQ(Fixture("K330").Block(258, 0, 0, 1).status, 128 + 0x0E);

  EXPECT_EQ(fixture.Text("DRS001A01"), "DR05");
  EXPECT_EQ(fixture.Block(260, 1).status, 10);
  EXPECT_EQ(fixture.Text("DRS001A01"), "DR0D");
}

}  // namespace
}  // namespace sim::test
