#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ControllerFixture.h"
#include "OsTransferBytes.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

constexpr int kRefused = 128;

char StatusByte(Fixture& fixture, std::size_t index) {
  return fixture.Block(7, 0, 106).payload.at(index);
}

TEST(Downloads, AnAurexOsReplacesTheReportedVersion) {
  const std::tuple<std::string, std::string, std::uint32_t, std::uint32_t, std::string> cases[] = {
      {"K220-22-R1", "K220", 0x80000, 0x180000, "|4.75|03"},
      {"K220-32", "K222", 0x80000, 0x180000, "|4.75|03"},
      {"K380", "K330", 0x100000, 0x300000, "|4.75|03"},
      {"K670", "CLR ", 0x1000000, 0x1400000, "O/S 4.75;|B03;"}};
  for (const auto& [model, image, osPlace, fontsPlace, reported] : cases) {
    SCOPED_TRACE(model);
    Fixture fixture(model);
    EXPECT_EQ(fixture.Text("CCB"), "CCOK");
    EXPECT_EQ(StatusByte(fixture, 28), 3);
    const auto chunk = [&fixture](std::uint16_t topic, std::uint32_t address, std::uint16_t sequence,
                                  const std::string& data) {
      return fixture.Block(65, address, static_cast<std::uint32_t>(data.size()), sequence, topic, data).status;
    };
    const std::string os(500 * 256 - 8, 'x');
    const std::string fonts = "fonts";
    const std::string stream = Stored(os);
    EXPECT_EQ(chunk(1, osPlace, 1, stream.substr(0, 500)), kRefused + 0xF) << "no header yet";
    EXPECT_EQ(chunk(3, osPlace, 1, ""), kRefused + 2);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader("K999", 475, 3, os, fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader(image, 1000, 3, os, fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(0, 0, 0, OsHeader(image, 475, 3, os, fonts)), 10);
    EXPECT_EQ(fixture.Block(69).status, kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace, 2, stream.substr(0, 500)), kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace, 1, stream.substr(0, 8)), kRefused + 0xF);
    EXPECT_EQ(chunk(1, osPlace - 1, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, fontsPlace, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, fontsPlace - 2000, 1, stream.substr(0, 500)), kRefused + 0xB);
    EXPECT_EQ(chunk(1, osPlace, 1, Little(5, 4) + Little(6, 4) + "abcdef"), kRefused + 0xF) << "grows by packing";
    EXPECT_EQ(chunk(1, osPlace, 1, Little(500, 4) + Little(6, 4) + "abcdef"), kRefused + 0xF) << "no zlib stream";
    for (std::uint16_t k = 1; k <= 256; ++k) {
      const std::uint32_t at = 500u * (k - 1u);
      EXPECT_EQ(chunk(1, osPlace + at, k == 256 ? 1 : k, stream.substr(at, 500)), 10) << k;
      if (k != 7) continue;
      EXPECT_EQ(chunk(1, osPlace + at, 7, stream.substr(at, 500)), 10) << "a repeat";
      EXPECT_EQ(chunk(1, osPlace + at, 8, stream.substr(at, 500)), kRefused + 0xF) << "out of step";
    }
    EXPECT_EQ(chunk(1, osPlace + 128000, 2, "more"), kRefused + 0xF);
    EXPECT_EQ(chunk(2, fontsPlace - 1000, 1, std::string(501, 'x')), kRefused + 2);
    EXPECT_EQ(fixture.Block(69).status, kRefused + 0xF) << "the fonts are missing";
    EXPECT_EQ(chunk(17, fontsPlace, 1, Stored(fonts)), kRefused + 0xF);
    EXPECT_EQ(chunk(16, fontsPlace, 1, Stored(fonts)), 10);
    EXPECT_EQ(fixture.Block(69).status, 11);
    fixture.Wait(10s);
    EXPECT_NE(StatusByte(fixture, 9), 0);
    EXPECT_EQ(fixture.Text("CCE"), "CCOK");
    EXPECT_TRUE(fixture.Text("ID").ends_with(reported)) << fixture.Text("ID");
    EXPECT_EQ(fixture.State(), 'R');
  }
}

}  // namespace
}  // namespace sim::test
