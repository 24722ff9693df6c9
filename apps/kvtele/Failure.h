#pragma once

#include <algorithm>
#include <expected>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "clone/CloneOutcome.h"
#include "link/LinkError.h"

namespace kv::cli {

// What the program ends with, so that a script can tell what to do next. The numbers are part of the command line's
// promise.
enum class ExitCode {
  Done = 0,
  Failed = 1,        // the operation failed
  Usage = 2,         // the command line cannot be understood; nothing was sent
  NoConnection = 3,  // the controller was never reached
  Refused = 4,       // refused by the controller, or the command does not fit it
  Differs = 5,       // what was read back or compared is not the same
  BadFile = 6,
  LinkLost = 7,  // the connection went away in the middle
  Interrupted = 130,
};

// Why a command ended without its result: one word for scripts, and for people what was being done, what happened, the
// likely cause and what to do. Parts that have nothing to say are empty.
struct Failure {
  ExitCode exit = ExitCode::Failed;
  std::string code;  // "usage", "noReply", "refused" ...
  std::string doing;
  std::string happened;
  std::string cause;
  std::string cure;
  std::optional<std::string> untold{};  // what of `happened` a terminal has not shown before; nothing: all of it

  // The texts for a terminal, each part on a line of its own, ending with a line feed.
  [[nodiscard]] std::string Text() const;
};

// What every function of this program returns that can fail: the value, or why there is none.
template <typename Value>
using OrFailure = std::expected<Value, Failure>;

// A kind of thing that was in the way, as an engine names it: its word for scripts, and what the program ends with.
template <typename Cause>
struct CauseRow {
  Cause cause;
  std::string_view name;
  ExitCode exit;
};
// The row of that cause; null: its failure is named by the error of the link.
template <typename Cause>
[[nodiscard]] const CauseRow<Cause>* RowOf(std::span<const CauseRow<Cause>> rows, Cause cause) {
  const auto row = std::ranges::find(rows, cause, &CauseRow<Cause>::cause);
  return row == rows.end() ? nullptr : &*row;
}

// A command line that cannot be understood.
[[nodiscard]] Failure UsageFailure(std::string happened, std::string cure = {});
// A command that is understood but does not fit the controller.
[[nodiscard]] Failure NotFitFailure(std::string doing, std::string happened, std::string cause, std::string cure);
// The user's Ctrl-C; `doing` says how far the work had come.
[[nodiscard]] Failure InterruptedFailure(std::string doing);
// What a link call left behind. `wasConnected` tells a link that never came about from one that broke.
[[nodiscard]] Failure LinkFailure(const LinkError& error, bool wasConnected);
// A failure of the cloner's engine; `doing` says what for.
[[nodiscard]] Failure CloneFailure(std::string doing, const CloneOutcome& outcome);

}  // namespace kv::cli
