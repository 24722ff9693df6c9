#include "clone/RestoreReach.h"

#include "base/Texts.h"
#include "clone/ProgramState.h"
#include "clone/RestoreBegin.h"
#include "desktop/StopScope.h"

namespace kv {
namespace {

bool IsAllWritten(const RestoreReach& reach) {
  return reach.written >= reach.lines;
}

std::string PartText(const RestoreReach& reach) {
  return std::to_string(reach.written) + " of " + std::to_string(reach.lines) +
         " lines of the clone file were written and stay so: the controller's memory is part of the clone.";
}

std::string RunningText(const RestoreReach& reach) {
  if (reach.isEnd) return "its program runs. It has taken the end frame, so all of the clone is in it.";
  if (IsAllWritten(reach)) return "its program runs, with the clone.";
  return "its program runs on memory that may be a mixture of the clone and what was there before. Stop it if that can "
         "do harm, and restore the whole file again.";
}

std::string StateText(const RestoreReach& reach, char state) {
  switch (state) {
    case 'R':
      return RunningText(reach);
    case 'L':
      return "it is loading, its program is stopped. Restore the whole file again.";
    case 'S':
      return "its program is stopped. Restore the whole file again.";
    case 'B':
      return "it is in its boot loader, its program does not run.";
    default:
      return std::string("its state is \"") + state + "\", which is not known.";
  }
}

}  // namespace

std::string LeftText(const RestoreReach& reach) {
  if (reach.written == 0 && reach.isUnsure) {
    return "The controller may have taken the line all the same: its program is then stopped, and the rest of that "
           "segment erased.";
  }
  if (reach.written == 0) return "";
  if (IsAllWritten(reach)) return "All lines of the clone file were written before.";
  if (reach.isUnsure && reach.isEnd) {
    return "All lines but the end frame were written. If the controller has taken that, too, it has been reset and "
           "runs "
           "with the clone; if not, it is loading and its program is stopped.";
  }
  const std::string text = PartText(reach) + " When it answered last, its program was stopped.";
  if (!reach.isUnsure) return text + " Restore the whole file again.";
  return text +
         " If it has lost its power since, it has started again and runs on that mixture. Restore the whole file "
         "again.";
}

std::string AskWhatIsLeft(const RestoreReach& reach, Channel& link, Pacer& pacer) {
  if (reach.written == 0 && !reach.isUnsure) return "";
  const StopScope asking(pacer);  // a stop ended the restore, not this question
  const auto controller = link.GetControllerInfo(link.UnitID());
  if (controller) return "Asked afterwards, the controller says: " + StateText(reach, controller->state);
  return "The controller was asked afterwards whether its program runs, and did not tell: " +
         link.LastError().happened + ".";
}

std::expected<void, CloneOutcome> CheckAfterRestore(const RestoreReach& reach, Channel& link,
                                                    const Channel::ControllerInfo& asked) {
  if (reach.written == 0) return {};
  const auto controller = MeetAgain(link, asked);
  if (!controller) {
    CloneOutcome outcome = controller.error();
    outcome.reason += "\nAll lines were answered with OK, but by whom is not known. Restore the file again.";
    return std::unexpected(outcome);
  }
  if (!IsRunningState(controller->state)) {
    return std::unexpected(CloneOutcome::Failed(CloneCause::Unproven,
                                                "All lines were answered with OK, but asked afterwards, the controller "
                                                "says: " +
                                                    StateText(reach, controller->state)));
  }
  if (reach.unproven == 0) return {};
  const auto further = static_cast<std::uint64_t>(reach.unproven - 1);
  const std::string others = further == 0 ? "" : " and " + Counted(further, "more line");
  return std::unexpected(CloneOutcome::Failed(
      CloneCause::Unproven,
      "Line " + std::to_string(reach.firstUnproven) + " of the clone file" + others +
          " got an OK that is not the controller's own reply: it was late, damaged or another "
          "unit's. Whether this was written is not known.\nWhat to do: compare the controller with "
          "the file (verify), and restore it again if they differ."));
}

}  // namespace kv
