#pragma once

#include <cstdint>
#include <expected>

namespace sim {

// Why a controller refuses a request; the numbers are the codes on the wire.
enum class Refusal : std::uint8_t {
  UnknownCommand = 0x01,
  Malformed = 0x02,
  UnknownOperandType = 0x03,
  PastTheEnd = 0x04,
  ReadOnly = 0x05,
  BadValue = 0x06,
  PasswordNeeded = 0x07,
  WrongPassword = 0x08,
  WrongState = 0x09,
  Busy = 0x0A,
  OutsideMemory = 0x0B,
  WrongLetter = 0x0C,
  FlashError = 0x0D,
  NotOnThisModel = 0x0E,
  NotTogether = 0x0F,
};

template <typename T>
using Result = std::expected<T, Refusal>;

[[nodiscard]] inline std::unexpected<Refusal> Refuse(Refusal refusal) {
  return std::unexpected(refusal);
}

}  // namespace sim
