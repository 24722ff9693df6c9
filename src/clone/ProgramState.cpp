#include "clone/ProgramState.h"

namespace kv {
namespace {

bool Asks(Prompts& prompts, const std::string& text) {
  return prompts.Show({.text = text,
                       .title = std::string(kClonerCaption),
                       .icon = PromptIcon::Exclamation,
                       .buttons = PromptButtons::YesNo,
                       .canLose = true}) == PromptAnswer::Yes;
}

}  // namespace

std::string RunWarning(char state) {
  if (state != 'L') return "";
  return "It is loading: a restore or a download was cut, and its memory may be a mixture of two programs.";
}

bool IsStartWanted(Prompts& prompts, const std::string& controller, char state) {
  if (state != 'S' && state != 'L') return true;
  const std::string warning = RunWarning(state);
  return Asks(prompts, "The program of the controller (" + controller + ") does not run. " + warning +
                           (warning.empty() ? "" : " ") +
                           "Creating a clone ends with starting its program. Continue?");
}

std::string OfferToRun(const clsDumpPLC& engine, Channel& link, Prompts& prompts, Pacer& pacer,
                       const std::string& controller) {
  if (!engine.HasStoppedProgram()) return "";
  pacer.ClearStop();  // it ended the create, not what comes now
  if (!Asks(prompts, "The program of the controller (" + controller +
                         ") was stopped for the clone. Start it again now?")) {
    return "The controller's program was not started again.";
  }
  if (link.RunController(link.UnitID())) return "The controller's program was started again.";
  return "The controller's program could not be started again.\n" + link.LastError().Text();
}

}  // namespace kv
