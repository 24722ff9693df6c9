#include "KvCmDrv1/LinkInput.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

using namespace std::chrono_literals;

LinkSettings Unusual(Transport transport) {
  LinkSettings settings;
  settings.transport = transport;
  settings.model = "K450-45";
  settings.host = "plc.mill";
  settings.tcpPort = 65535;
  settings.serialPort = "/dev/ttyUSB0";
  settings.baudRate = 300;
  settings.framing = {7, Parity::Even, 2};
  settings.modem = {"AT&F", "0,12-34", true, 300s};
  settings.unit = 255;
  settings.timeOut = 300s;
  settings.tries = 10;
  settings.reconnects = false;
  return settings;
}

TEST(LinkInput, ABadFieldIsNamedWithItsRangeWhereItIsUsedAndKeepsItsSetting) {
  const struct {
    Transport transport;
    Transport other;  // a link that does not use the field
    std::string LinkInput::* field;
    std::vector<std::string> bad;
    const char* fault;
  } rows[] = {
      {Transport::Simulated, Transport::Tcp, &LinkInput::model, {"", " "}, "Model: choose one"},
      {Transport::Tcp,
       Transport::Serial,
       &LinkInput::host,
       {"", "a b", "a\x01", std::string(201, 'a')},
       "Host: a name or an address, without blanks"},
      {Transport::Tcp,
       Transport::Serial,
       &LinkInput::tcpPort,
       {"", "0", "65536", "-1", "20300x", "9999999999999999999"},
       "TCP port: a number from 1 to 65535"},
      {Transport::Listen, Transport::Modem, &LinkInput::tcpPort, {"0"}, "TCP port: a number from 1 to 65535"},
      {Transport::Serial, Transport::Tcp, &LinkInput::serialPort, {""}, "Port: choose one, or enter its name"},
      {Transport::Serial,
       Transport::Listen,
       &LinkInput::baudRate,
       {"299", "921601"},
       "Speed: a number from 300 to 921600"},
      {Transport::Modem,
       Transport::Serial,
       &LinkInput::modemNumber,
       {"", "-", "12\xC3\xA4", "12;34"},
       "Telephone number: digits, and marks such as * # , W"},
      {Transport::Modem,
       Transport::Serial,
       &LinkInput::modemInit,
       {"AT\r"},
       "Init text: at most 200 printable characters"},
      {Transport::Modem,
       Transport::Serial,
       &LinkInput::dialTimeOut,
       {"4", "301"},
       "Time for dialling: a number from 5 to 300"},
      {Transport::Serial, Transport::Serial, &LinkInput::unit, {"256"}, "Unit id: a number from 0 to 255"},
      {Transport::Serial,
       Transport::Serial,
       &LinkInput::timeOut,
       {"49", "300001", "1.5"},
       "Time-out: a number from 50 to 300000"},
      {Transport::Serial, Transport::Serial, &LinkInput::tries, {"0", "11"}, "Tries: a number from 1 to 10"},
  };
  for (const auto& row : rows) {
    for (const std::string& bad : row.bad) {
      LinkInput input = InputOf(Unusual(row.transport));
      input.*row.field = bad;
      const CheckedInput checked = CheckInput(input, Unusual(row.transport));
      ASSERT_EQ(checked.faults.size(), 1U) << row.fault << ": " << bad;
      EXPECT_EQ(checked.faults.front().text, row.fault);
      EXPECT_EQ(checked.settings, Unusual(row.transport));
      if (row.other == row.transport) continue;
      input.transport = row.other;
      EXPECT_TRUE(CheckInput(input, {}).faults.empty()) << row.fault << ": " << bad;
    }
  }
}

}  // namespace
}  // namespace kv
