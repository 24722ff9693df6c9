#include "KvCmDrv1/LinkInput.h"

#include <gtest/gtest.h>

#include "Fixture.h"

namespace kv {
namespace {

TEST(LinkInput, TheLongestTextsAreTaken) {
  LinkInput input = InputOf(UnusualSettings(Transport::Modem));
  input.host = std::string(200, 'a');
  input.modemInit = "AT" + std::string(198, 'X');
  EXPECT_TRUE(CheckInput(input, {}).faults.empty());
  const LinkSettings unusual = UnusualSettings(Transport::Modem);
  EXPECT_EQ(CheckInput(InputOf(unusual), {}).settings, unusual) << "all of them";
}

TEST(LinkInput, ABadFieldIsNamedWithItsRangeWhereItIsUsedAndKeepsItsSetting) {
  using enum Transport;
  using In = LinkInput;
  // clang-format off: one row a line
  const struct {
    Transport transport;
    Transport other;  // a link that does not use the field
    std::string LinkInput::* field;
    std::vector<std::string> bad;
    const char* fault;
  } rows[] = {
      {Simulated, Tcp, &In::model, {"", " "}, "Model: choose one"},
      {Tcp, Serial, &In::host, {"", "a b", "\x01", std::string(201, 'a')}, "Host: a name or an address, without blanks"},
      {Tcp, Serial, &In::tcpPort, {"", "0", "65536", "-1", "2x", "9999999999999999999"}, "TCP port: a number from 1 to 65535"},
      {Listen, Modem, &In::tcpPort, {"0"}, "TCP port: a number from 1 to 65535"},
      {Serial, Tcp, &In::serialPort, {""}, "Port: choose one, or enter its name"},
      {Serial, Listen, &In::baudRate, {"299", "921601"}, "Speed: a number from 300 to 921600"},
      {Modem, Serial, &In::modemNumber, {"", "-", "12\xC3\xA4", "12;34"}, "Telephone number: digits, and marks such as * # , W"},
      {Modem, Serial, &In::modemInit, {"AT\r"}, "Init text: at most 200 printable characters"},
      {Modem, Serial, &In::dialTimeOut, {"4", "301"}, "Time for dialling: a number from 5 to 300"},
      {Modem, Serial, &In::redials, {"", "100", "-1"}, "Dial again: a number from 0 to 99"},
      {Serial, Serial, &In::serialNumber, {"-1", "4294967296", "12A"}, "Serial number, or nothing: a number from 0 to 4294967295"},
      {Serial, Serial, &In::unit, {"256"}, "Unit id: a number from 0 to 255"},
      {Serial, Serial, &In::timeOut, {"49", "300001", "1.5"}, "Time-out: a number from 50 to 300000"},
      {Serial, Serial, &In::tries, {"0", "11"}, "Tries: a number from 1 to 10"},
  };
  // clang-format on
  for (const auto& row : rows) {
    for (const std::string& bad : row.bad) {
      LinkInput input = InputOf(UnusualSettings(row.transport));
      input.*row.field = bad;
      const CheckedInput checked = CheckInput(input, UnusualSettings(row.transport));
      ASSERT_EQ(checked.faults.size(), 1U) << row.fault << ": " << bad;
      EXPECT_EQ(checked.faults.front().text, row.fault);
      EXPECT_EQ(checked.settings, UnusualSettings(row.transport));
      if (row.other == row.transport) continue;
      input.transport = row.other;
      EXPECT_TRUE(CheckInput(input, {}).faults.empty()) << row.fault << ": " << bad;
    }
  }
}

}  // namespace
}  // namespace kv
