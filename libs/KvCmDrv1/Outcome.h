#pragma once

namespace kv {

// How a step of an exchange ended.
enum class Outcome {
  Done,             // answered; a refusal is an answer
  Silence,          // nothing arrived in time
  Damaged,          // something arrived, none of it whole or ours
  Lost,             // the other side has gone
  Stopped,          // the user or AbortComm ended it
  Closed,           // the link is closed, and is not to be opened by an exchange
  CannotReopen,     // lost, and did not come back until the deadline
  NotIdentified,    // the controller answers, but does not say who it is
  OtherController,  // came back, to another controller
  NotExecuted,      // lost on the way; the controller says that it has not executed the request
  NotSupported,     // the controller does not have this
  Unsure,           // whether a request that must not be done twice was done could not be found out
};

}  // namespace kv
