#include "bench/exchange/PlainClient.h"

#include <fcntl.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <utility>

namespace bench {
namespace {

constexpr double kLongest = 1;  // seconds for one reply

bool WaitForInput(int handle, double seconds) {
  if (seconds <= 0) return false;
  fd_set handles;
  FD_ZERO(&handles);
  FD_SET(handle, &handles);
  timeval limit{};
  limit.tv_sec = static_cast<time_t>(seconds);
  limit.tv_usec = static_cast<suseconds_t>((seconds - static_cast<double>(limit.tv_sec)) * 1e6);
  return ::select(handle + 1, &handles, nullptr, nullptr, &limit) > 0;
}

}  // namespace

PlainClient::PlainClient(const std::string& port, Requests requests, std::size_t replyBytes)
    : mHandle(::open(port.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)),
      mRequests(std::move(requests)),
      mReplyBytes(replyBytes) {
  termios settings{};
  ::tcgetattr(mHandle, &settings);
  ::cfmakeraw(&settings);
  ::tcsetattr(mHandle, TCSANOW, &settings);
}

PlainClient::~PlainClient() {
  if (mHandle >= 0) ::close(mHandle);
}

std::optional<Cost> PlainClient::Exchange(int times, pid_t partner) const {
  bool isGood = mHandle >= 0;
  const auto cost = Measure(partner, [&] {
    for (int i = 0; i < times && isGood; ++i) isGood = ExchangeOne(mRequests[static_cast<std::size_t>(i) % 2]);
  });
  return isGood ? std::optional(cost) : std::nullopt;
}

bool PlainClient::ExchangeOne(const std::string& request) const {
  const double deadline = ClockSeconds() + kLongest;
  if (::write(mHandle, request.data(), request.size()) != static_cast<ssize_t>(request.size())) return false;
  std::array<char, 4096> buffer;
  for (std::size_t missing = mReplyBytes; missing > 0;) {
    if (!WaitForInput(mHandle, deadline - ClockSeconds())) return false;
    const auto received = ::read(mHandle, buffer.data(), buffer.size());
    if (received <= 0 || static_cast<std::size_t>(received) > missing) return false;
    missing -= static_cast<std::size_t>(received);
  }
  return true;
}

}  // namespace bench
