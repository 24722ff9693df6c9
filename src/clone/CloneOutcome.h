#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/AtomicFile.h"
#include "link/ChangeObserver.h"
#include "link/LinkError.h"

namespace kv {

enum class CloneEnd { Done, Stopped, Failed };

// What kind of thing was in the way.
enum class CloneCause {
  None,
  Stop,        // the user
  OldOs,       // the controller's O/S is too old to be cloned
  Segments,    // its memory is named by a table that cannot be used, or of a shape that a clone file cannot hold
  Password,    // it was empty or too long, or the controller does not take it
  NoPassword,  // the user cancelled the box for it
  File,        // the clone file cannot be read, written or understood
  Link,        // an exchange with the controller failed; `link` says how
  Reply,       // the controller did not answer a line of a restore with OK; `link` says Refused when it refused
  Unproven,    // all lines of a restore were answered with OK, but that they were written is not known
};

// How an operation ended. `reason` is for the log, beside the boxes that the user sees: what happened, the likely cause
// and what to do, a sentence a line, UTF-8. Empty when it is done.
struct CloneOutcome {
  CloneEnd end = CloneEnd::Done;
  CloneCause cause = CloneCause::None;
  std::string reason = {};
  LinkError link = {};  // of the exchange that failed or was refused; code None for other causes

  [[nodiscard]] static CloneOutcome Failed(CloneCause cause, std::string reason) {
    return {CloneEnd::Failed, cause, std::move(reason), {}};
  }
  [[nodiscard]] static CloneOutcome OfFile(const FileError& error) { return Failed(CloneCause::File, error.Text()); }
  // An exchange that failed because it was stopped is a stop.
  [[nodiscard]] static CloneOutcome OfLink(const LinkError& error);
  [[nodiscard]] static CloneOutcome OfStop();
};

// What the journal of changes is told of a restore: what it is, and how it ended.
[[nodiscard]] Operation RestoreOperation(const std::filesystem::path& file);
[[nodiscard]] ChangeEnd ChangeEndOf(const CloneOutcome& outcome);

// The refusal that a reply to a text command holds ("ERROR" and a code), as the channel would tell it; nothing when it
// is none.
[[nodiscard]] std::optional<LinkError> RefusalIn(std::string_view reply);

// How long work without callbacks of its own is watched and ended: both may be empty. Amounts are bytes.
struct CloneWork {
  std::function<bool()> isStopped;
  std::function<void(std::string_view stage, std::uint64_t done, std::uint64_t total)> onProgress;

  [[nodiscard]] bool IsStopped() const { return isStopped && isStopped(); }
  void Report(std::string_view stage, std::uint64_t done, std::uint64_t total) const {
    if (onProgress) onProgress(stage, done, total);
  }
};

}  // namespace kv
