#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ControllerFixture.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

TEST(Operands, RefuseWhatTheyCannotDo) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"K330", "RO", "010000000", "02"},       // a digit is missing
      {"K330", "RO", "01000000010", "02"},     // a digit too many
      {"K330", "RO", "010000000a", "02"},      // lower case
      {"K330", "WO", "010000000201", "02"},    // a value is missing
      {"K330", "WO", "04000000020001", "02"},  // read-only too
      {"K330", "WO", "01FFFF00020", "02"},     // past the end too
      {"K330", "WO", "0700000001", "02"},      // a value is missing
      {"K330", "WO", "0800000001X", "02"},     // no such type, and no digit
      {"K330", "RO", "0800000001", "03"},      // no such type
      {"K330", "WO", "080000000101", "03"},
      {"K330", "WO", "0100000000", "04"},                    // count 0
      {"K330", "RO", "5000000001", "03"},                    // DBI is compact
      {"Q50", "RO", "0700000001", "03"},                     // MF is not
      {"K330", "RO", "5300000001", "03"},                    // timer words are compact
      {"K330", "RO", "0100000000", "04"},                    // count 0
      {"K330", "RO", "0100000079", "04"},                    // 121 bits
      {"Q50", "WO", "0201F5000101", "04"},                   // no SB 501
      {"K330", "WO", "0201F4000101", "05"},                  // SB 500
      {"K330", "WO", "0201F500020101", "05"},                // SB 501 and 502
      {"K330", "WO", "04000000010001", "05"},                // SI
      {"K330", "WO", "0B00000001000000000000000000", "05"},  // timers as a whole
      {"K330", "WO", "0100000001FF", "06"},                  // a bit of 255
      {"K330", "WO", "510000000102255100", "06"},            // 100 hours
      {"K330", "WO", "560000000100010000", "06"},            // 65536
      {"Q50", "WO", "510000000100004E21", "06"},             // 200.01 s fits no time base
  };
  for (const auto& [model, command, fields, code] : cases)
    EXPECT_EQ(Fixture(model).Own(command, fields), "ERROR" + code) << fields;
}

TEST(Operands, TheClockAndTheProgramMoveSomeOfThem) {
  Fixture fixture("K330");
  fixture.Wait(16h + 3min + 5s);  // over midnight
  EXPECT_EQ(fixture.Read("04001E0006"), "0005000300000002000107E8");
  EXPECT_EQ(fixture.Read("0500640001"), "0008D13A");
  Fixture fresh("K330");
  fresh.Wait(4s);
  EXPECT_EQ(fresh.Read("0B00000001"), "000003E80000025800");
  fresh.Wait(6500ms);
  EXPECT_EQ(fresh.Read("0B00000001"), "000003E80000000001");
  fresh.Wait(1500ms);
  EXPECT_EQ(fresh.Read("0B00000001"), "000003E80000038400");
  EXPECT_EQ(fresh.Read("0C00000001"), "0064000C00");
  fresh.Wait(3s);
  EXPECT_EQ(fresh.Read("07000A0001"), "000042C8");  // 100 at a quarter of 60 s
}

TEST(Operands, StandStillWhileTheProgramIsStopped) {
  Fixture fixture("K330");
  fixture.Wait(4s);
  EXPECT_EQ(fixture.Text("CCS"), "CCOK");
  fixture.Wait(100s);
  EXPECT_EQ(fixture.Read("0500640001"), "00000028");
  EXPECT_EQ(fixture.Read("5200000001"), "00000258");
  EXPECT_EQ(fixture.Read("04001F0001"), "0001");  // the clock goes on
}

}  // namespace
}  // namespace sim::test
