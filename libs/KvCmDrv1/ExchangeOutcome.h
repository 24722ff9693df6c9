#pragma once

namespace kv {

// How a step of an exchange ended.
enum class ExchangeOutcome {
  Done,             // answered; a refusal is an answer
  Silence,          // nothing arrived in time
  Stray,            // only a few bytes that belong to nothing
  Foreign,          // only whole messages that answer something else
  Incomplete,       // a message began and did not end
  Damaged,          // as much as a reply is arrived, and was none
  Lost,             // the other side has gone
  Stopped,          // the user or AbortComm ended it
  Closed,           // the link is closed, and is not to be opened by an exchange
  CannotReopen,     // lost, and did not come back until the deadline
  NotIdentified,    // the controller answers, but does not say who it is
  OtherController,  // another controller answers
  NotExecuted,      // lost on the way; the controller says that it has not executed the request
  NotSupported,     // the controller does not have this
  NotRecorded,      // a change that could not be recorded, and so was not sent
  Unsure,           // whether a request that must not be done twice was done could not be found out
};

// The request went out, or was to, and no answer came. The later in the list, the more is known about why.
[[nodiscard]] constexpr bool IsUnanswered(ExchangeOutcome outcome) {
  return outcome >= ExchangeOutcome::Silence && outcome <= ExchangeOutcome::Damaged;
}

// Whether a controller that could not be asked again leaves a request that went out in doubt. A stop and another
// controller are told as what they are, and after a loss it is asked once more.
[[nodiscard]] constexpr bool LeavesUnsure(ExchangeOutcome ofAskingAgain) {
  return ofAskingAgain != ExchangeOutcome::Lost && ofAskingAgain != ExchangeOutcome::Stopped &&
         ofAskingAgain != ExchangeOutcome::OtherController;
}

}  // namespace kv
