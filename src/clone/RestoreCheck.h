#pragma once

#include <expected>
#include <string>
#include <vector>

#include "clone/CloneInfo.h"
#include "clone/CloneOutcome.h"
#include "clone/ManifestCheck.h"
#include "link/Channel.h"

namespace kv {

// What a user hears before the first line of a restore, and consents to or not.
struct RestoreCheck {
  VersionInfo version;                 // of the controller
  Channel::ControllerInfo controller;  // serial number, state
  std::vector<std::string> obstacles;  // why the file should not be restored, a sentence each
  std::vector<std::string> warnings;   // what is worth knowing, a sentence each
  std::vector<CloneSegment> staying;   // erased in the file, not in the controller: see ErasedSegments.h, StayText
};

// Holds a file against the controller that it is meant for. Only reads; no password is needed. Obstacles are damage,
// another model, another unit (unless `usesOwnUnit`: the lines are then sent for the controller's), memory that is laid
// out in another way, and a manifest that does not fit. Another O/S, hardware code, or a clone of a running program are
// warnings.
//
// The layout is held against the controller's memory itself: each segment of the file must begin and end where one of
// the controller's does, because the first line into a segment erases all of it.
[[nodiscard]] std::expected<RestoreCheck, CloneOutcome> CheckBeforeRestore(Channel& link, const CloneInfo& info,
                                                                           const ManifestReport& manifest,
                                                                           bool usesOwnUnit,
                                                                           const CloneWork& work = {});

// "K220-22-R1, serial number 4711, 192.168.1.20:20300, unit 1": whose memory it is, for questions and headings.
[[nodiscard]] std::string ControllerText(const VersionInfo& version, const Channel::ControllerInfo& controller,
                                         const std::string& link);

}  // namespace kv
