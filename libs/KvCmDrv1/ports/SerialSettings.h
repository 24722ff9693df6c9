#pragma once

#include <asio/serial_port.hpp>
#include <optional>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/PortErrors.h"

namespace kv {

// Sets an open line up: speed, framing, no flow control. What the line does not take, or nothing.
[[nodiscard]] inline std::optional<SerialFault> SetUpLine(asio::serial_port& line, int baudRate,
                                                          const SerialFraming& framing) {
  using Base = asio::serial_port_base;
  const auto parity = framing.parity == Parity::Even  ? Base::parity::even
                      : framing.parity == Parity::Odd ? Base::parity::odd
                                                      : Base::parity::none;
  const auto stopBits = framing.stopBits == 2 ? Base::stop_bits::two : Base::stop_bits::one;
  std::error_code code;
  line.set_option(Base::character_size(static_cast<unsigned>(framing.dataBits)), code);
  if (!code) line.set_option(Base::parity(parity), code);
  if (!code) line.set_option(Base::stop_bits(stopBits), code);
  if (!code) line.set_option(Base::flow_control(Base::flow_control::none), code);
  if (code) return SerialFault::BadFraming;
  line.set_option(Base::baud_rate(static_cast<unsigned>(baudRate)), code);
  if (code) return SerialFault::BadSpeed;
  return std::nullopt;
}

}  // namespace kv
