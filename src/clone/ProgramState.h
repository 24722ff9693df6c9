#pragma once

#include <string>
#include <string_view>

#include "clone/clsDumpPLC.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "link/Channel.h"

namespace kv {

// What a create does to the controller's program beside the clone itself, and the questions about it. `controller` is
// ControllerText (RestoreCheck.h); states are those of Channel::ControllerInfo.

// A create ends with the program running, whatever it was before. Asks when that changes something; true when the
// create may begin.
[[nodiscard]] bool IsStartWanted(Prompts& prompts, const std::string& controller, char state);

// Asked when a running program is to stop for the clone; with No it is cloned while it runs.
[[nodiscard]] MessageBox StopQuestion();

// What helps who is asked for a password that there is not.
inline constexpr std::string_view kAnyPassword =
    "A controller that has no password takes any text; an empty one is not taken.";
// Asked before the segments are listed; an empty text is none.
[[nodiscard]] InputBox PasswordQuestion(const std::string& controller);

// Asks what a create would ask of a controller in this state, for who only wants to know. False when no password was
// given: then it would fail.
[[nodiscard]] bool ShowCreateQuestions(Prompts& prompts, const std::string& controller, char state);

// After a create that failed with the program stopped: offers to start it, also after a stop by the user. `outcome`,
// that of the create, then says what became of the program.
void OfferToRun(const clsDumpPLC& engine, Channel& link, Prompts& prompts, Pacer& pacer, const std::string& controller,
                CloneOutcome& outcome);

// Whether the program runs: "R", or "I" of one that is idle.
[[nodiscard]] constexpr bool IsRunningState(char state) {
  return state == 'R' || state == 'I';
}

// What running the program from this state means, for the question before it; empty when it is nothing special.
[[nodiscard]] std::string RunWarning(char state);

}  // namespace kv
