#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "link/LinkError.h"

namespace kv {

enum class DownloadEnd : std::uint8_t {
  Done,
  WouldGoOn,  // a dry run came to the point where the controller would change
  Declined,   // the user answered a question with No, or chose no file
  Refused,    // file and controller do not belong together
  Failed,
  Stopped,  // the user's Stop or Ctrl-C
};

// What kind of thing was in the way.
enum class DownloadCause : std::uint8_t {
  None,
  User,      // declined or stopped
  NotFit,    // another model, an older O/S, fonts that are too old
  File,      // it cannot be read, is damaged, or is not the one any more that was shown
  Backup,    // the clone that was wanted before was not made, or not verified
  Link,      // an exchange failed; `link` says how
  Reply,     // the controller answered that it failed, or something that is no answer
  Differs,   // what was read back is not what was sent
  Unproven,  // all was sent, but what the controller then reports is not what the file holds
};

// What a download that ended leaves the controller as, as far as it is known. docs/downloads.md says for each step of
// each download which of these a cut there leaves.
enum class ControllerLeft : std::uint8_t {
  Untouched,
  Stopped,            // its program was told to stop, the project is the one it had
  ProjectBegun,       // Aurex: a project download is under way; the old project is there until 69 has been sent
  ProjectErased,      // compact: the old project is gone, the new one is not whole
  ProjectUnproven,    // compact: the old project is gone, the new one was sent whole and not all of it read back
  Programming,        // Aurex: it may be programming the new project into its flash
  FlashFailed,        // Aurex: its flash has failed while it programmed the new project
  ProjectWaits,       // all is in it, and takes effect with a reset that it has not had
  ProjectPerhaps,     // all is in it and it was told to reset, but what it runs since is not known
  BootLoader,         // its boot loader runs, the old O/S is still there
  BootLoaderAsFound,  // its boot loader runs, as it did before, and with the O/S that it had, if any
  BootLoaderErased,   // its boot loader runs, the O/S is gone or not whole
  BootLoaderUnsure,   // its boot loader runs, and whether the O/S in it is whole is not known
  BootLoaderPerhaps,  // it was sent into its boot loader, and has not answered since
  OsProgramming,      // Aurex: it may be programming the new O/S into its flash
  OsWaits,            // the new O/S is programmed, and takes effect with a reset that it has not had
  OsPerhaps,          // the new O/S is programmed and it was told to reset, but what it runs since is not known
  OldOs,              // the old O/S runs again, or still
  SomeOs,             // an O/S runs, and it is not known whether it is the new one, or it is neither of the two
  NewOs,              // the new O/S runs; what was to come after it has not all been done
  NewOsLoading,       // the new O/S runs, and is being loaded with the memory that was saved
  NewProject,         // the new project runs
};

// What it is left as, and which way leads out: one or two sentences, UTF-8. The windows, the command line and the docs
// say the same.
[[nodiscard]] std::string_view LeftBehindText(ControllerLeft left);

// How a download ended.
struct DownloadOutcome {
  DownloadEnd end = DownloadEnd::Done;
  DownloadCause cause = DownloadCause::None;
  std::string reason = {};  // what happened, the likely cause and what to do, UTF-8; empty when it is done
  ControllerLeft left = ControllerLeft::Untouched;
  std::string done = {};  // when it is done, what of it `left` does not say, UTF-8; may be empty
  LinkError link = {};    // of the exchange that failed; code None for other causes
};

// Reason, and behind it what the controller is left as; when it is done, what has been done, if there is more to say.
[[nodiscard]] std::string OutcomeText(const DownloadOutcome& outcome);

}  // namespace kv
