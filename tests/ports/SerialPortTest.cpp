#include "KvCmDrv1/ports/SerialPort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/ports/PortErrors.h"
#include "Partners.h"

namespace kv {
namespace {

using kvtest::Pty;
using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr Duration kNoLimit = std::chrono::seconds(5);

SerialPort PortOn(const std::string& name) {
  return SerialPort(name, 115200, SerialFraming{});
}

TEST(SerialPortTest, CarriesEveryByteBothWays) {
  const Pty pty;
  auto port = PortOn(pty.name);
  ASSERT_TRUE(port.Open(kNoLimit).has_value());
  // Control characters, line ends and flow control must all pass: block messages are binary.
  ASSERT_TRUE(kvtest::WriteAll(port, kvtest::EveryByte()));
  EXPECT_EQ(pty.near.Take(256), kvtest::EveryByte());
  pty.near.Give(kvtest::EveryByte());
  EXPECT_EQ(kvtest::ReadFrom(port, 256), kvtest::EveryByte());
  std::string nothing;
  EXPECT_EQ(port.Read(nothing, milliseconds(1)), Port::Result::Nothing);
}

TEST(SerialPortTest, IsTheOnlyOneOnTheLineUntilItIsClosed) {
  const Pty pty;
  auto first = PortOn(pty.name);
  auto second = PortOn(pty.name);
  ASSERT_TRUE(first.Open(kNoLimit).has_value());
  const auto refused = second.Open(kNoLimit);
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().happened, pty.name + " is in use");
  first.Close();
  EXPECT_TRUE(second.Open(kNoLimit).has_value());
}

TEST(SerialPortTest, SaysWhyItDoesNotOpen) {
  for (const auto& [name, happened] : {std::pair{"/dev/ttyNoSuchPort", "there is no serial port /dev/ttyNoSuchPort"},
                                       {"/dev/null", "/dev/null is not a serial port"},
                                       {"/", "/ is not a serial port"}}) {
    const auto opened = PortOn(name).Open(kNoLimit);
    ASSERT_FALSE(opened.has_value()) << name;
    EXPECT_EQ(opened.error().happened, happened);
  }
  EXPECT_THAT(SerialOpenError("/dev/ttyS3", SerialFault::NoPermission, {}, "dialout").cure, HasSubstr("\"dialout\""));
}

TEST(SerialPortTest, TellsThatTheAdapterWasUnplugged) {
  Pty pty;
  auto port = PortOn(pty.name);
  ASSERT_TRUE(port.Open(kNoLimit).has_value());
  pty.near.Close();
  EXPECT_EQ(kvtest::ReadFrom(port, 1), "");
  EXPECT_FALSE(port.IsOpen());
  EXPECT_EQ(port.LossReason().happened, pty.name + " is gone");
}

TEST(SerialPortTest, ChangesItsSpeedWhileItIsOpen) {
  const Pty pty;
  auto port = PortOn(pty.name);
  EXPECT_FALSE(port.SetBaudRate(9600));  // closed
  ASSERT_TRUE(port.Open(kNoLimit).has_value());
  EXPECT_EQ(port.ByteTime(), Duration(87));
  ASSERT_TRUE(port.SetBaudRate(9600));
  termios settings{};
  ASSERT_EQ(::tcgetattr(pty.near.Get(), &settings), 0);
  EXPECT_EQ(::cfgetospeed(&settings), static_cast<speed_t>(B9600));
  EXPECT_FALSE(port.SetBaudRate(12345));
  EXPECT_EQ(port.Description(), pty.name + ", 9600 8N1");
  EXPECT_EQ(port.ByteTime(), Duration(1042));
}

TEST(SerialPortTest, DoesNotPassOverAFramingThatTheLineCannotDo) {
  const Pty pty;  // has 8 bits and no parity, whatever it is told
  SerialPort port(pty.name, 9600, SerialFraming{7, Parity::Even, 2});
  EXPECT_EQ(port.ByteTime(), Duration(1146));  // 11 bits
  const auto opened = port.Open(kNoLimit);
  ASSERT_FALSE(opened.has_value());
  EXPECT_EQ(opened.error().happened, pty.name + " does not work with this framing");
}

TEST(SerialPortTest, KnowsTheNumberOfAPort) {
  for (const auto& [port, number] :
       {std::pair{"com12", 12}, {"\\\\.\\COM10", 10}, {"/dev/ttyS3", 3}, {"/dev/ttyUSB3", 0}}) {
    EXPECT_EQ(SerialPortNumber(port), number) << port;
  }
}

}  // namespace
}  // namespace kv
