#include "bench/exchange/BarePartner.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace bench {
namespace {

using Ends = std::pair<int, int>;
using Buffer = std::array<char, 4096>;

Ends ConnectOverTcp() {
  const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof place;
  ::bind(listener, reinterpret_cast<sockaddr*>(&place), size);
  ::listen(listener, 1);
  ::getsockname(listener, reinterpret_cast<sockaddr*>(&place), &size);
  const int near = ::socket(AF_INET, SOCK_STREAM, 0);
  ::connect(near, reinterpret_cast<sockaddr*>(&place), size);
  const int far = ::accept(listener, nullptr, nullptr);
  ::close(listener);
  const int isOn = 1;
  for (const int handle : {near, far}) ::setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, &isOn, sizeof isOn);
  return {near, far};
}

Ends ConnectOverPty() {
  const int far = ::posix_openpt(O_RDWR | O_NOCTTY);
  ::grantpt(far);
  ::unlockpt(far);
  const int near = ::open(::ptsname(far), O_RDWR | O_NOCTTY);
  termios settings{};
  ::tcgetattr(near, &settings);
  ::cfmakeraw(&settings);
  ::tcsetattr(near, TCSANOW, &settings);
  return {near, far};
}

bool ReadAll(int handle, Buffer& buffer, std::size_t count) {
  while (count > 0) {
    const auto received = ::read(handle, buffer.data(), count);
    if (received <= 0) return false;
    count -= static_cast<std::size_t>(received);
  }
  return true;
}

bool WriteAll(int handle, const Buffer& buffer, std::size_t count) {
  return ::write(handle, buffer.data(), count) == static_cast<ssize_t>(count);
}

}  // namespace

double CpuSecondsOf(pid_t process) {
  clockid_t clock = CLOCK_PROCESS_CPUTIME_ID;
  if (process != 0) ::clock_getcpuclockid(process, &clock);
  timespec time{};
  ::clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double ClockSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

BarePartner::BarePartner(Way way, std::size_t requestBytes, std::size_t replyBytes)
    : mRequestBytes(requestBytes), mReplyBytes(replyBytes) {
  const auto [near, far] = way == Way::Tcp ? ConnectOverTcp() : ConnectOverPty();
  mProcess = ::fork();
  if (mProcess == 0) {
    ::close(near);
    Buffer buffer{};
    while (ReadAll(far, buffer, requestBytes) && WriteAll(far, buffer, replyBytes)) {
    }
    ::_exit(0);
  }
  ::close(far);
  mHandle = near;
}

BarePartner::~BarePartner() {
  ::close(mHandle);
  if (mProcess <= 0) return;
  ::kill(mProcess, SIGKILL);
  ::waitpid(mProcess, nullptr, 0);
}

std::optional<Cost> BarePartner::Exchange(int times) const {
  bool isGood = mProcess > 0;
  const auto cost = Measure(mProcess, [&] {
    Buffer buffer{};
    for (int i = 0; i < times && isGood; ++i) {
      isGood = WriteAll(mHandle, buffer, mRequestBytes) && ReadAll(mHandle, buffer, mReplyBytes);
    }
  });
  return isGood ? std::optional(cost) : std::nullopt;
}

}  // namespace bench
