// The driver and kvsim over a real TCP connection and a real pseudo terminal.

#include <gtest/gtest.h>

#include "RealFixture.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::matrix {
namespace {

using namespace mdlDataTypesView;
using namespace std::chrono_literals;
using enum OperandTypeCode;
using Texts = std::vector<std::string>;
using Words = std::vector<std::int16_t>;

class RealLine : public testing::TestWithParam<Transport> {};

struct TypeRow {
  OperandTypeCode type;
  Texts texts;  // written, if it can be, and read again
};

// The lowest and the highest value of each type that can be written.
const std::vector<TypeRow> kAurexTypes = {
    {MB, {"1", "0", "1"}},
    {MI, {"-32768", "32767", "4660"}},
    {MF, {"1.5", "-0.25", "1e+10"}},
    {ML, {"-2147483648", "2147483647", "-1"}},
    {DW, {"0", "4294967295", "305419896"}},
    {TimerPreset, {"00:00:00.00", "99:59:59.99", "01:02:03.04"}},
    {TimerCurrent, {"00:00:00.01", "99:59:59.98", "10:20:30.40"}},
    {CounterPreset, {"0", "65535", "12"}},
    {CounterCurrent, {"1", "65534", "13"}},
    {XB, {"0", "1", "1"}},
    {XI, {"-32768", "32767", "-2"}},
    {XL, {"-2147483648", "2147483647", "3"}},
    {XDW, {"0", "4294967295", "4"}},
    {SB, {"0", "0", "0"}},
    {SI, {"0", "0", "0"}},
    {SL, {"0", "0", "0"}},
    {SDW, {"0", "0", "0"}},
    {Input, {"0", "0", "0"}},
    {Output, {"0", "0", "0"}},
    {TimerValue, {"0", "0", "0"}},
    {CounterValue, {"0", "0", "0"}},
};
const std::vector<TypeRow> kCompactTypes = {
    {MB, {"1", "0", "1"}},
    {MI, {"-32768", "32767", "4660"}},
    {DBI, {"-32768", "32767", "22136"}},
    {TimerPreset, {"0", "163830", "35990000"}},
    {TimerCurrent, {"10", "1638300", "20000"}},
    {SB, {"0", "0", "0"}},
    {SI, {"0", "0", "0"}},
    {Input, {"0", "0", "0"}},
    {Output, {"0", "0", "0"}},
    {TimerValue, {"0", "0", "0"}},
};

TEST_P(RealLine, EachTypeIsReadAndEachWritableOneWritten) {
  const struct {
    const char* model;
    const std::vector<TypeRow>& rows;
  } controllers[] = {{"K670-T40", kAurexTypes}, {"Q50", kCompactTypes}};
  for (const auto& controller : controllers) {
    RealFixture fixture(GetParam());
    ASSERT_TRUE(fixture.Serve({"--model", controller.model}));
    Channel* link = fixture.Link();
    ASSERT_NE(link, nullptr) << fixture.driver.LastError().Text();
    ASSERT_TRUE(link->StopController(1)) << link->LastError().Text();  // nothing moves by itself
    for (const TypeRow& row : controller.rows) {
      SCOPED_TRACE(std::string(controller.model) + ", " + std::string(TypeName(row.type)));
      const Region region{7, 9, row.type};
      EXPECT_TRUE(WriteRegion(*link, controller.model, region, row.texts));
    }
    for (const TypeRow& row : controller.rows) {
      SCOPED_TRACE(std::string(controller.model) + ", " + std::string(TypeName(row.type)));
      EXPECT_EQ(ReadRegion(*link, controller.model, {7, 9, row.type}), row.texts);
    }
  }
}

TEST_P(RealLine, FaultsArePassedOrTold) {
  for (const char* rule : {"noreply:every=5", "dribble:ms=2,every=5", "damage:every=5", "lost:at=9,every=5"}) {
    SCOPED_TRACE(rule);
    RealFixture fixture(GetParam());
    ASSERT_TRUE(fixture.Serve({"--model", "Q50", "--fault", rule}));
    int done = 0;
    for (std::int16_t number = 1; number <= 6; ++number) {
      Channel* link = fixture.Link();
      if (link == nullptr || !link->WriteMI(0, Words{number}, 1)) continue;
      const auto read = link->ReadMI(0, 1, 1);
      EXPECT_TRUE(!read || *read == Words{number});
      done += int{read.has_value()};
    }
    EXPECT_GE(done, 3);
  }
}

INSTANTIATE_TEST_SUITE_P(Lines, RealLine, testing::ValuesIn(kRealLines),
                         [](const auto& line) { return line.param == Transport::Tcp ? "tcp" : "pty"; });

}  // namespace
}  // namespace kv::matrix
