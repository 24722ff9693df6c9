#include "KvCmDrv1/ports/SerialPort.h"

#include <gmock/gmock.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>

#include "KvCmDrv1/ports/PortErrors.h"
#include "KvCmDrv1/ports/PortHolder.h"
#include "Partners.h"
#include "desktop/console/ConsolePacer.h"

namespace kv {
namespace {

using kvtest::Pty;
using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr Duration kNoLimit = std::chrono::seconds(5);

SerialPort PortOn(const std::string& name) {
  return SerialPort(name, 115200, SerialFraming{});
}

TEST(SerialPortTest, IsTheOnlyOneOnTheLineUntilItIsClosed) {
  const Pty pty;
  auto first = PortOn(pty.name);
  auto second = PortOn(pty.name);
  errno = EWOULDBLOCK;  // of an earlier call, and nothing that speaks against this one
  ASSERT_TRUE(first.Open(kNoLimit).has_value());
  const PortError refused = kvtest::WhyNot(second);
  EXPECT_EQ(refused.happened, pty.name + " is in use");
  EXPECT_EQ(refused.cause, "this program has the port open");
  first.Close();
  EXPECT_TRUE(second.Open(kNoLimit).has_value());
  second.Close();
  const kvtest::Descriptor locked(::open(pty.name.c_str(), O_RDWR | O_NOCTTY));
  ASSERT_EQ(::flock(locked.Get(), LOCK_EX), 0);  // a program that asks for no more than the lock
  (void)kvtest::WhyNot(first);
}

// A process of its own opens the port, stays or is killed, and leaves the lock behind.
TEST(SerialPortTest, TellsWhoHasItOpenAndThatOneThatWasKilledHasLeftItLocked) {
  const Pty pty;
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const int handle = ::open(pty.name.c_str(), O_RDWR | O_NOCTTY);
    ::ioctl(handle, TIOCEXCL);
    (void)!::write(ready[1], "x", 1);
    for (;;) ::pause();
  }
  char byte = 0;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  auto port = PortOn(pty.name);
  PortError refused = kvtest::WhyNot(port);
  EXPECT_EQ(refused.happened, pty.name + " is in use");
  EXPECT_THAT(refused.cause, HasSubstr("(process " + std::to_string(child) + ") has the port open"));
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  refused = kvtest::WhyNot(port);
  EXPECT_THAT(refused.cause, HasSubstr("killed"));
  EXPECT_THAT(refused.cure, HasSubstr("pseudo terminal"));
}

// What somebody who is not the administrator is told to do about a port that he may not open.
std::string CureForNobody(const std::string& name) {
  constexpr unsigned kNobody = 65534;
  int said[2];
  if (::pipe(said) != 0) return {};
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(1);
    const auto opened = PortOn(name).Open(kNoLimit);
    const bool isSure = FindPortHolder(name, 0).isCertain;  // of processes that it may not look into
    const std::string cure = opened ? "it opened" : isSure ? "it is sure that nobody has it" : opened.error().cure;
    ::_exit(::write(said[1], cure.data(), cure.size()) > 0 ? 0 : 1);
  }
  ::waitpid(child, nullptr, 0);
  char text[1000];
  const auto size = ::read(said[0], text, sizeof text);
  return {text, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

TEST(SerialPortTest, NamesAGroupOnlyWhenItHelpsAndIsNotTheAdministrators) {
  if (::getuid() != 0) GTEST_SKIP() << "only the administrator can give a port to a group";
  const struct {
    const char* group;
    mode_t mode;
    bool helps;
  } rows[] = {{"dialout", 0660, true}, {"dialout", 0620, false}, {"dialout", 0640, false}, {"root", 0660, false}};
  for (const auto& row : rows) {
    const Pty pty;
    ASSERT_EQ(::chown(pty.name.c_str(), 0, ::getgrnam(row.group)->gr_gid), 0);
    ASSERT_EQ(::chmod(pty.name.c_str(), row.mode), 0);
    const std::string cure = CureForNobody(pty.name);
    EXPECT_THAT(cure, HasSubstr("administrator"));
    EXPECT_EQ(cure.find("\"dialout\"") != std::string::npos, row.helps) << cure;
    EXPECT_EQ(cure.find("group") != std::string::npos, row.helps) << cure;
  }
}

TEST(SerialPortTest, SaysWhyItDoesNotOpen) {
  for (const auto& [name, happened] : {std::pair{"/dev/ttyNoSuchPort", "there is no serial port /dev/ttyNoSuchPort"},
                                       {"/dev/null", "/dev/null is not a serial port"},
                                       {"/", "/ is not a serial port"},
                                       {"/dev/null/", "there is no serial port /dev/null/"}}) {
    auto port = PortOn(name);
    const PortError refused = kvtest::WhyNot(port);
    EXPECT_EQ(refused.happened, happened);
    EXPECT_THAT(refused.cure, testing::Not(HasSubstr("unplug")));
    EXPECT_THAT(refused.cause, testing::Not(HasSubstr("has the port open")));
  }
}

TEST(SerialPortTest, ChangesItsSpeedWhileItIsOpen) {
  const Pty pty;
  auto port = PortOn(pty.name);
  ASSERT_TRUE(port.Open(kNoLimit).has_value());
  ASSERT_TRUE(port.SetBaudRate(9600));
  termios settings{};
  ASSERT_EQ(::tcgetattr(pty.near.Get(), &settings), 0);
  EXPECT_EQ(::cfgetospeed(&settings), static_cast<speed_t>(B9600));
  EXPECT_FALSE(port.SetBaudRate(12345));
  EXPECT_EQ(port.Description(), pty.name + ", 9600 8N1");
}

TEST(SerialPortTest, DoesNotPassOverAFramingThatTheLineCannotDo) {
  const Pty pty;  // has 8 bits and no parity, whatever it is told
  SerialPort port(pty.name, 9600, SerialFraming{7, Parity::Even, 2});
  EXPECT_EQ(port.ByteTime(), Duration(1146));  // 11 bits
  EXPECT_EQ(SerialPort(pty.name, 0, {}).ByteTime(), Duration{});
  EXPECT_EQ(kvtest::WhyNot(port).happened, pty.name + " does not work with this framing");
}

TEST(SerialPortTest, KnowsTheNumberOfAPort) {
  const std::pair<const char*, int> rows[] = {
      {"com12", 12},   {"\\\\.\\COM10", 10}, {"/dev/ttyS3", 3}, {"/dev/ttyUSB3", 0}, {"COM65535", 65535},
      {"COM65536", 0}, {"COM0", 0},          {"COM", 0},        {"C1", 0},           {"", 0},
      {"COM1x", 0},
  };
  for (const auto& [port, number] : rows) EXPECT_EQ(SerialPortNumber(port), number) << port;
}

}  // namespace
}  // namespace kv
