#pragma once

#include "link/LinkError.h"

namespace kv {

// Whether the controller counts as lost after this error: it may be out of reach, so what is shown of it grows old.
// After all others it has answered, or nothing was asked.
[[nodiscard]] constexpr bool MeansLostLink(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == CannotOpen || code == NoReply || code == Damaged || code == LinkLost || code == OtherController;
}

}  // namespace kv
