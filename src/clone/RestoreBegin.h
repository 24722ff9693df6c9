#pragma once

#include <expected>
#include <span>

#include "clone/CloneOutcome.h"
#include "clone/CloneSegment.h"
#include "link/Channel.h"

namespace kv {

// What a restore sends before the lines of its file, when there is a need; else nothing is sent but the question for
// the state. Access must have been given.
//
// A load that was cut goes on where it ended: segments that it had written into would keep what the file leaves out.
// So a restore into a controller that is loading begins the load anew (CCM).
//
// `erase` names segments of which the file has no line, because all of them was 255. The first bytes that are written
// into a segment set all of it to 255 before: so two bytes of 255 erase it. The load is begun for them, too.
//
// After a failure with erased segments the reason says that the controller is loading.
[[nodiscard]] std::expected<void, CloneOutcome> BeginRestore(Channel& link, std::span<const CloneSegment> erase = {});

}  // namespace kv
