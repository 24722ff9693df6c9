#ifndef _WIN32

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <asio/io_context.hpp>
#include <cerrno>
#include <exception>
#include <utility>

#include "KvCmDrv1/ports/PortHolder.h"
#include "KvCmDrv1/ports/SerialLine.h"
#include "KvCmDrv1/ports/SerialSettings.h"

namespace kv {
namespace {

constexpr std::size_t kReadSize = 4096;  // what a tty hands over at most

std::error_code LastCode() {
  return {errno, std::system_category()};
}

bool WouldWait(std::error_code code) {
  return code.value() == EAGAIN || code.value() == EINTR;
}

SerialFault FaultOf(std::error_code code) {
  switch (code.value()) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return SerialFault::Missing;
    case EACCES:
    case EPERM:
      return SerialFault::NoPermission;
    case EBUSY:
      return SerialFault::InUse;
    case ENOTTY:
    case EISDIR:
    case EINVAL:
      return SerialFault::NotSerial;
    case EIO:
      return SerialFault::NoHardware;  // a port that only the kernel's table has
    default:
      return SerialFault::Other;
  }
}

// The group to which a user must belong to use the device; empty when being in its group does not give the right, or
// would give the rights of the administrator with it.
std::string GroupThatHelps(const std::string& path) {
  constexpr mode_t kReadAndWrite = S_IRGRP | S_IWGRP;
  constexpr gid_t kAdministrators = 0;
  struct stat facts{};
  if (::stat(path.c_str(), &facts) != 0) return {};
  if ((facts.st_mode & kReadAndWrite) != kReadAndWrite || facts.st_gid == kAdministrators) return {};
  const group* owner = ::getgrgid(facts.st_gid);
  return owner ? owner->gr_name : "";
}

// Keeps every other program off the line. The lock holds off those that ask for one, the exclusive mode all others
// except the administrator's, who is asked by the same mode when it was there first.
bool TakeForOurselves(int handle) {
  int isTaken = 0;
#ifdef TIOCGEXCL
  if (::ioctl(handle, TIOCGEXCL, &isTaken) == 0 && isTaken != 0) return false;
#endif
  if (::flock(handle, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  return ::ioctl(handle, TIOCEXCL) == 0;
}

bool WaitFor(int handle, short events, Duration span) {
  pollfd entry{handle, events, 0};
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(std::max(span, Duration::zero()));
  return ::poll(&entry, 1, static_cast<int>(milliseconds.count())) > 0;
}

// A lock outlives its program on a pseudo terminal whose other end is open, and with some adapters.
// `handles`: how many of ours are open by now.
PortError InUseError(const std::string& port, int handles) {
  const PortHolder holder = FindPortHolder(port, handles);
  const SerialFault withoutName = holder.isCertain ? SerialFault::LeftLocked : SerialFault::MaybeLocked;
  return SerialOpenError(port, holder.name.empty() ? withoutName : SerialFault::InUse, {}, holder.name);
}

PortError OpenError(const std::string& port, std::error_code code) {
  const SerialFault fault = FaultOf(code);
  if (fault == SerialFault::InUse) return InUseError(port, 0);
  return SerialOpenError(port, fault, code, fault == SerialFault::NoPermission ? GroupThatHelps(port) : "");
}

}  // namespace

struct SerialLine::System {
  asio::io_context context;
  asio::serial_port line{context};
  bool isOurs = false;
  std::error_code lossCode;

  ~System() {
    if (isOurs) ::ioctl(line.native_handle(), TIOCNXCL);  // a pseudo terminal keeps the mode past its closing
  }

  Port::Result Lose(std::error_code code) {
    lossCode = code;
    return Port::Result::Lost;
  }
};

std::expected<std::unique_ptr<SerialLine>, PortError> SerialLine::Open(const std::string& port, int baudRate,
                                                                       const SerialFraming& framing) {
  try {
    auto system = std::make_unique<System>();
    std::error_code code;
    system->line.open(port, code);
    if (code) return std::unexpected(OpenError(port, code));
    system->isOurs = TakeForOurselves(system->line.native_handle());
    if (!system->isOurs) return std::unexpected(InUseError(port, 1));
    if (const auto fault = SetUpLine(system->line, baudRate, framing)) {
      return std::unexpected(SerialOpenError(port, *fault, {}, {}));
    }
    ::tcflush(system->line.native_handle(), TCIOFLUSH);
    return std::unique_ptr<SerialLine>(new SerialLine(std::move(system)));
  } catch (const std::system_error& error) {  // no descriptors left
    return std::unexpected(SerialOpenError(port, SerialFault::Other, error.code(), {}));
  }
}

SerialLine::SerialLine(std::unique_ptr<System> system) : mSystem(std::move(system)) {}
SerialLine::~SerialLine() = default;

Port::Result SerialLine::Write(std::string_view& bytes, Duration slice) {
  if (bytes.empty()) return Port::Result::Done;
  const int handle = mSystem->line.native_handle();
  auto sent = ::write(handle, bytes.data(), bytes.size());
  if (sent < 0 && WouldWait(LastCode())) {
    if (!WaitFor(handle, POLLOUT, slice)) return Port::Result::Nothing;
    sent = ::write(handle, bytes.data(), bytes.size());
  }
  if (sent < 0) {
    const auto code = LastCode();
    return WouldWait(code) ? Port::Result::Nothing : mSystem->Lose(code);
  }
  bytes.remove_prefix(static_cast<std::size_t>(sent));
  return sent > 0 ? Port::Result::Done : Port::Result::Nothing;
}

Port::Result SerialLine::Read(std::string& buffer, Duration slice) {
  const int handle = mSystem->line.native_handle();
  if (!WaitFor(handle, POLLIN, slice)) return Port::Result::Nothing;
  const std::size_t before = buffer.size();
  ssize_t received = 0;
  buffer.resize_and_overwrite(before + kReadSize, [&](char* bytes, std::size_t) {
    received = ::read(handle, bytes + before, kReadSize);
    return before + static_cast<std::size_t>(std::max<ssize_t>(received, 0));
  });
  if (received == 0) return mSystem->Lose({});  // the adapter, or the other end of a pseudo terminal, has gone
  if (received < 0) {
    const auto code = LastCode();
    return WouldWait(code) ? Port::Result::Nothing : mSystem->Lose(code);
  }
  return Port::Result::Done;
}

bool SerialLine::SetBaudRate(int baudRate) {
  std::error_code code;
  mSystem->line.set_option(asio::serial_port_base::baud_rate(static_cast<unsigned>(baudRate)), code);
  return !code;
}

std::error_code SerialLine::LossCode() const {
  return mSystem->lossCode;
}

}  // namespace kv

#endif
