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
#include "KvCmDrv1/ports/TcpConnect.h"
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
  if (!FindPortHolder(pty.name, 0).isCertain) GTEST_SKIP() << "only the administrator sees what all programs have open";
  refused = kvtest::WhyNot(port);
  EXPECT_THAT(refused.cause, HasSubstr("killed"));
  EXPECT_THAT(refused.cure, HasSubstr("pseudo terminal"));
}

// What somebody who is not the administrator is told to do about a port that he may not open.
std::string CureForNobody(const std::string& name) {
  constexpr unsigned kNobody = 65534;
  std::vector<gid_t> groups(static_cast<std::size_t>(::getgroups(0, nullptr)));
  EXPECT_GE(::getgroups(static_cast<int>(groups.size()), groups.data()), 0);
  EXPECT_TRUE(::setgroups(0, nullptr) == 0 && ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0);
  auto port = PortOn(name);
  const std::string cure = kvtest::WhyNot(port).cure;
  EXPECT_FALSE(FindPortHolder(name, 0).isCertain) << "of processes that it may not look into";
  EXPECT_TRUE(::seteuid(0) == 0 && ::setegid(0) == 0 && ::setgroups(groups.size(), groups.data()) == 0);
  return cure;
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

TEST(PortErrors, SayWhatHappenedWhyAndWhatToDo) {
  const auto code = [](int number) { return std::error_code(number, std::system_category()); };
  ConsolePacer pacer;
  const auto refused = ConnectTcp("127.0.0.1", kvtest::FreePort(), kNoLimit, pacer);
  ASSERT_FALSE(refused);
  const std::error_category& ofSockets = refused.error().category();
  std::string all = kvtest::Words(NoHostError());
  for (const int number : {ECONNREFUSED, ETIMEDOUT, EHOSTUNREACH, ENETUNREACH, ECANCELED, EACCES, EPERM})
    all += kvtest::Words(ConnectError(EndpointText("::1", 502), {number, ofSockets}));
  for (const int number : {0, ECONNRESET, EPIPE, ETIMEDOUT}) {
    all += kvtest::Words(ConnectionLossError(EndpointText("plc", 502), code(number)));
    all += kvtest::Words(SerialLossError("ttyS9", code(number)));
  }
  for (int fault = 0; fault <= static_cast<int>(SerialFault::Other); ++fault) {
    for (const char* owner : {"", "dialout"})
      all += kvtest::Words(SerialOpenError("ttyS9", static_cast<SerialFault>(fault), code(EIO), owner));
  }
  test::ExpectAsRecorded([&all] { return all; });
}

TEST(SerialPortTest, SaysWhyItDoesNotOpen) {
  for (const char* name : {"/dev/ttyNoSuchPort", "/dev/null", "/", "/proc/self/comm", "/dev/null/"}) {
    auto port = PortOn(name);
    (void)kvtest::WhyNot(port);
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
