#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ControllerBench.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

struct WriteCase {
  std::string model, place, values, readBack;
};

TEST(Operands, HoldWhatIsWritten) {
  const WriteCase cases[] = {
      {"K670", "0100000002", "0100", "0100"},                         // MB
      {"K670", "010FFF0001", "01", "01"},                             //
      {"K670", "011FFF0001", "01", "01"},                             // the last one
      {"K330", "0300050002", "8000FFFF", "8000FFFF"},                 // MI
      {"K330", "0500FF0001", "80000001", "80000001"},                 // ML
      {"K330", "0700000001", "0000C0A0", "0000C0A0"},                 // MF
      {"K330", "10003F0001", "FFFFFFFF", "FFFFFFFF"},                 // DW
      {"K330", "4003FF0001", "01", "01"},                             // XB
      {"K330", "4101FF0001", "7FFF", "7FFF"},                         // XI
      {"K330", "4200FF0001", "89ABCDEF", "89ABCDEF"},                 // XL
      {"K330", "43003F0001", "89ABCDEF", "89ABCDEF"},                 // XDW
      {"Q50", "5003FF0001", "FFFE", "FFFE"},                          // DBI
      {"AurexQ50", "5003FF0001", "0102", "0102"},                     //
      {"K330", "5100BF0001", "022550FF", "022550FF"},                 // timer preset, the longest
      {"Q50", "5200010002", "0000271000F9FC18", "0000271000F9FC18"},  // fits 10 ms; the longest of 10 s
      {"K330", "5600170001", "0000FFFF", "0000FFFF"},                 // counter preset
      {"K330", "5700000001", "00000000", "00000000"},                 // counter current
      {"K330", "0201F50001", "01", "01"},                             // SB 501
  };
  for (const WriteCase& c : cases) {
    SCOPED_TRACE(c.model + " " + c.place);
    Bench bench(c.model);
    EXPECT_EQ(bench.Own("WO", c.place + c.values), c.place + "OK");
    EXPECT_EQ(bench.Own("RO", c.place), c.place + c.readBack);
  }
}

struct RefusalCase {
  std::string model, os, command, fields, code;
};

TEST(Operands, RefuseWhatTheyCannotDo) {
  const RefusalCase cases[] = {
      {"K330", "", "RO", "010000000", "02"},             // a digit is missing
      {"K330", "", "RO", "01000000010", "02"},           // a digit too many
      {"K330", "", "RO", "010000000a", "02"},            // lower case
      {"K330", "", "WO", "010000000201", "02"},          // a value is missing
      {"K330", "", "RO", "0800000001", "03"},            // no such type
      {"K330", "", "RO", "5000000001", "03"},            // DBI is compact
      {"Q50", "", "RO", "0700000001", "03"},             // MF is not
      {"K330", "", "RO", "5300000001", "03"},            // timer words are compact
      {"K330", "", "RO", "0100000000", "04"},            // count 0
      {"K330", "", "RO", "0100000079", "04"},            // 121 bits
      {"K330", "", "RO", "0310000001", "04"},            // past the end
      {"K330", "", "RO", "010FFF0002", "04"},            //
      {"Q50", "", "WO", "0201F5000101", "04"},           // no SB 501
      {"K330", "", "WO", "0201F4000101", "05"},          // SB 500
      {"K330", "", "WO", "0201F500020101", "05"},        // SB 501 and 502
      {"K330", "", "WO", "04000000010001", "05"},        // SI
      {"K330", "", "WO", "0B000000010000000000", "05"},  // timers as a whole
      {"K330", "", "WO", "0100000001FF", "06"},          // a bit of 255
      {"K330", "", "WO", "510000000102255100", "06"},    // 100 hours
      {"K330", "", "WO", "560000000100010000", "06"},    // 65536
      {"Q50", "", "WO", "510000000100004E21", "06"},     // 200.01 s fits no time base
      // An older O/S knows fewer operands.
      {"K330", "2.91", "RO", "0103FF0002", "04"},
      {"K330", "2.91", "RO", "0700000001", "03"},
      {"K330", "2.91", "RO", "0B00800001", "04"},
      {"K330", "2.91", "RO", "4000000001", "03"},
      {"K670", "1.0", "RO", "010FFF0002", "04"},
      {"K670", "1.0", "RO", "0700180001", "04"},
      {"K230", "1.0", "RO", "0C00000001", "03"},
  };
  for (const RefusalCase& c : cases) {
    SCOPED_TRACE(c.model + " " + c.os + " " + c.command + c.fields);
    Bench bench(Options(c.model, c.os));
    EXPECT_EQ(bench.Own(c.command, c.fields), "ERROR" + c.code);
  }
}

TEST(Operands, StayOutOfReachOfAnOlderOsOnlyBeyondItsLimits) {
  const SimulatorOptions inReach[] = {Options("K330", "3.00"), Options("K670", "1.1"), Options("K330", "2.99")};
  const std::string places[] = {"010FFF0001", "011FFF0001", "0103FF0001"};
  for (std::size_t i = 0; i < 3; ++i) {
    Bench bench(inReach[i]);
    EXPECT_EQ(bench.Own("RO", places[i]), places[i] + "00");
  }
}

TEST(Operands, RefusedOrLyingWritesChangeNothing) {
  Bench bench("K330");
  EXPECT_EQ(bench.Own("WO", "01000000030101FF"), "ERROR06");
  bench.It().SetLying(true);
  EXPECT_EQ(bench.Own("WO",
                      "0100000002"
                      "0101"),
            "0100000002OK");
  bench.It().SetLying(false);
  EXPECT_EQ(bench.Own("RO", "0100000003"), "0100000003000000");
}

TEST(Operands, TimersOfCompactControllersAreTimerWords) {
  Bench bench("Q50");
  const std::string times[][2] = {
      {"00003FFF", "3FFF"}, {"00004E20", "87D0"}, {"0002BF20", "4708"}, {"00190640", "C668"}};
  for (const auto& [time, word] : times) {
    EXPECT_EQ(bench.Own("WO", "5100010001" + time), "5100010001OK");
    EXPECT_EQ(bench.Own("RO", "5300010001"), "5300010001" + word);
  }
}

TEST(Operands, TheClockAndTheProgramMoveSomeOfThem) {
  Bench bench("K330");
  bench.Wait(16h + 3min + 5s);  // over midnight
  EXPECT_EQ(bench.Own("RO", "04001E0006"),
            "04001E0006"
            "0005"
            "0003"
            "0000"
            "0002"
            "0001"
            "07E8");
  EXPECT_EQ(bench.Own("RO", "0500640001"),
            "0500640001"
            "0008D13A");
  Bench fresh("K330");
  fresh.Wait(4s);
  EXPECT_EQ(fresh.Own("RO", "0B00000001"),
            "0B00000001"
            "000003E8"
            "00000258"
            "00");
  fresh.Wait(6500ms);
  EXPECT_EQ(fresh.Own("RO", "0B00000001"),
            "0B00000001"
            "000003E8"
            "00000000"
            "01");
  fresh.Wait(1500ms);
  EXPECT_EQ(fresh.Own("RO", "0B00000001"),
            "0B00000001"
            "000003E8"
            "00000384"
            "00");
  EXPECT_EQ(fresh.Own("RO", "0C00000001"),
            "0C00000001"
            "0064"
            "000C"
            "00");
  fresh.Wait(3s);
  EXPECT_EQ(fresh.Own("RO", "07000A0001"),
            "07000A0001"
            "000042C8");  // 100 at a quarter of 60 s
}

TEST(Operands, StandStillWhileTheProgramIsStopped) {
  Bench bench("K330");
  bench.Wait(4s);
  EXPECT_EQ(bench.Text("CCS"), "CCOK");
  bench.Wait(100s);
  EXPECT_EQ(bench.Own("RO", "0500640001"),
            "0500640001"
            "00000028");
  EXPECT_EQ(bench.Own("RO", "5200000001"),
            "5200000001"
            "00000258");
  EXPECT_EQ(bench.Own("RO", "04001F0001"),
            "04001F0001"
            "0001");  // the clock goes on
}

TEST(Operands, AListIsPackedRecordAfterRecord) {
  Bench bench("K330");
  EXPECT_EQ(bench.Own("WO",
                      "0100000009"
                      "010001010001000101"),
            "0100000009OK");
  EXPECT_EQ(bench.Own("WO",
                      "0300000001"
                      "1234"),
            "0300000001OK");
  EXPECT_EQ(bench.Own("WO",
                      "5700010001"
                      "00000102"),
            "5700010001OK");
  const auto record = [](char type, char start, char count) {
    return std::string("\0\0\0\0", 4) + type + std::string(3, '\0') + start + std::string(3, '\0') + count +
           std::string(7, '\0');
  };
  const BlockReply reply = bench.Block(256, 0, 3, 0, 0, record(1, 0, 9) + record(3, 0, 1) + record(12, 1, 1));
  EXPECT_EQ(reply.status, 10);
  EXPECT_EQ(reply.payload, std::string("\xAD\x01"
                                       "\x34\x12"
                                       "\0\0\x02\x01\0",
                                       9));
  EXPECT_EQ(bench.Block(256, 0, 1, 0, 0, record(0x50, 0, 1)).status, 128 + 3);
  EXPECT_EQ(bench.Block(256, 0, 1, 0, 0, record(1, 0, 121)).status, 128 + 4);
  EXPECT_EQ(bench.Block(256, 0, 2, 0, 0, record(1, 0, 1)).status, 128 + 2);
  EXPECT_EQ(bench.Block(256).status, 128 + 4);
}

}  // namespace
}  // namespace sim::test
