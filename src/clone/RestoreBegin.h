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
//
// `asked` is the controller as it was when the user was asked about it. Nothing is sent when another one answers now,
// or when somebody else has begun to load into it since: two restores at once leave a mixture, and both say success.
[[nodiscard]] std::expected<void, CloneOutcome> BeginRestore(Channel& link, const Channel::ControllerInfo& asked,
                                                             std::span<const CloneSegment> erase = {});

// Asks the controller who it is; a failure when its serial number is not that of `asked`.
[[nodiscard]] std::expected<Channel::ControllerInfo, CloneOutcome> MeetAgain(Channel& link,
                                                                             const Channel::ControllerInfo& asked);

}  // namespace kv
