#pragma once

#include <expected>
#include <filesystem>
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

  // A load is under way in the controller, or was cut. Ending it wants a consent of its own: EndLoadQuestion.
  [[nodiscard]] bool IsLoading() const { return controller.state == 'L'; }
};

// Holds a file against the controller that it is meant for. Only reads; no password is needed. Obstacles are damage,
// another model, memory that is laid out in another way, and a manifest that does not fit. Another O/S, hardware code
// or serial number, or a clone of a running program are warnings. For another unit: OtherUnitText.
//
// The layout is held against the controller's memory itself: each segment of the file must begin and end where one of
// the controller's does, because the first line into a segment erases all of it.
[[nodiscard]] std::expected<RestoreCheck, CloneOutcome> CheckBeforeRestore(Channel& link, const CloneInfo& info,
                                                                           const ManifestReport& manifest,
                                                                           const CloneWork& work = {});

// The question before a restore, the same words in window and command line: whose memory is overwritten with what.
// `controller` is ControllerText, `kept` a sentence on what becomes of what it holds now.
[[nodiscard]] std::string RestoreQuestion(const RestoreCheck& check, const CloneInfo& info,
                                          const std::filesystem::path& file, const std::string& controller,
                                          const std::string& kept);

// The question before a load that is found is ended; `controller` is ControllerText.
[[nodiscard]] std::string EndLoadQuestion(const std::string& controller);

// "K220-22-R1, O/S 4.60, cloned on 2026-11-21 10:15:00".
[[nodiscard]] std::string HeadText(const CloneHead& head);

// Whether both names are one file: a clone that is made there first would overwrite what is to be restored.
[[nodiscard]] bool IsSameFile(const std::filesystem::path& first, const std::filesystem::path& second);

// "K220-22-R1, serial number 4711, 192.168.1.20:20300, unit 1": whose memory it is, for questions and headings.
[[nodiscard]] std::string ControllerText(const VersionInfo& version, const Channel::ControllerInfo& controller,
                                         const std::string& link);

}  // namespace kv
