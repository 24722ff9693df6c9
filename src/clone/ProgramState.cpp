#include "clone/ProgramState.h"

#include "desktop/StopScope.h"
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
                           (warning.empty() ? "" : " ") + "Creating a clone ends with starting its program. Continue?");
}

MessageBox StopQuestion() {
  return {.text = "The PLC is about to STOP, Continue?",
          .title = std::string(kClonerCaption),
          .icon = PromptIcon::Question,
          .buttons = PromptButtons::YesNo,
          .canLose = true};
}

InputBox PasswordQuestion(const std::string& controller) {
  return {.text = "Enter Password Up To 8 Chars",
          .title = std::string(kClonerCaption),
          .secret = true,
          .hint = controller + (controller.empty() ? "" : "\r\n") + std::string(kAnyPassword) +
                  "\r\nUpper and lower case differ."};
}

bool ShowCreateQuestions(Prompts& prompts, const std::string& controller, char state) {
  static_cast<void>(IsStartWanted(prompts, controller, state));
  const bool hasPassword = !prompts.Ask(PasswordQuestion(controller)).value_or("").empty();
  if (IsRunningState(state)) static_cast<void>(prompts.Show(StopQuestion()));
  return hasPassword;
}

void OfferToRun(const clsDumpPLC& engine, Channel& link, Prompts& prompts, Pacer& pacer, const std::string& controller,
                CloneOutcome& outcome) {
  if (!engine.HasStoppedProgram()) return;
  const StopScope offering(pacer);  // a stop ended the create, not what comes now
  if (!Asks(prompts,
            "The program of the controller (" + controller + ") was stopped for the clone. Start it again now?")) {
    return;  // that it is stopped stands in the reason
  }
  const OperationScope starting(link.Changes(), {.tool = "Cloner", .what = "start the program again"});
  if (!link.RunController(link.UnitID())) {
    outcome.reason += "\nStarting it again failed:\n" + link.LastError().Text();
    return;
  }
  if (const std::size_t at = outcome.reason.find(kLeftStopped); at != std::string::npos) {
    outcome.reason.replace(at, kLeftStopped.size(),
                           "The controller's program was stopped for this clone and has been started again.");
  }
}

}  // namespace kv
