#pragma once

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

}  // namespace kv::cli
