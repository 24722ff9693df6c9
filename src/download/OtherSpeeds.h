#pragma once

#include "link/Channel.h"

namespace kv {

// Baud of the boot loaders of compact controllers: of a PX1 or PR1 that is told a speed, and of all others.
inline constexpr int kSlowBootBaud = 9600;
inline constexpr int kFastBootBaud = 57600;

// A download that was cut may have left a compact controller, or the link, at the speed of a boot loader, where nobody
// hears the other. To be tried when a request got no answer at the speed of the link: asks at 57600, 115200 and 9600
// baud who is there, which changes nothing. True when somebody answers, and the link stays at that speed; else it is as
// it was. A link without a speed is left alone.
[[nodiscard]] bool FindAtOtherSpeed(Channel& link);

// Whether this failure may come from two speeds that differ.
[[nodiscard]] constexpr bool MayBeOfSpeed(LinkErrorCode code) {
  return code == LinkErrorCode::NoReply || code == LinkErrorCode::Damaged;
}

}  // namespace kv
