#pragma once

#include <cstdint>
#include <string>
#include <system_error>

#include "KvCmDrv1/ports/Port.h"

namespace kv {

// "192.168.1.20:20300", with brackets around an IPv6 address.
[[nodiscard]] std::string EndpointText(const std::string& host, std::uint16_t port);

// Nobody has said which controller is meant.
[[nodiscard]] PortError NoHostError();

// Why `endpoint` could not be connected to. A time-out is asio's timed_out, a stop request operation_aborted.
[[nodiscard]] PortError ConnectError(const std::string& endpoint, std::error_code code);

// Why a connection that stood has gone; no error code when the other side closed it.
[[nodiscard]] PortError ConnectionLossError(const std::string& endpoint, std::error_code code);

// What can be wrong with a serial port.
enum class SerialFault {
  Missing,
  NoPermission,
  InUse,
  MaybeLocked,  // in use, or left locked by a program that was killed: the system does not tell which
  LeftLocked,   // nobody has it open
  NotSerial,
  NoHardware,
  BadSpeed,
  BadFraming,
  Other
};

// `code` is told only with Other. `owner`: with NoPermission a group whose members may use the device, with InUse the
// program that has it open; empty when there is none to name.
[[nodiscard]] PortError SerialOpenError(const std::string& port, SerialFault fault, std::error_code code,
                                        const std::string& owner);

[[nodiscard]] PortError SerialLossError(const std::string& port, std::error_code code);

}  // namespace kv
