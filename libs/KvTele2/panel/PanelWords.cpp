#include "KvTele2/panel/PanelWords.h"

namespace kv::panel {
namespace {

// Why what was held is held no longer.
std::string_view LetGoText(PanelVerdict verdict) {
  switch (verdict) {
    case PanelVerdict::Done:
      return "";
    case PanelVerdict::OperatedAtPanel:
      return "The controller has let go of what was held: who stands at the panel itself goes first.";
    case PanelVerdict::NotNow:
      return "The controller has let go of what was held: its display is in SYSTEM mode.";
    case PanelVerdict::NoLease:
      return "The controller has let go of what was held: this program does not operate the panel any more.";
    case PanelVerdict::Late:
      return "The controller has let go of what was held: the link took longer than two seconds.";
    case PanelVerdict::NothingThere:
    case PanelVerdict::NotWhatWasSeen:
    case PanelVerdict::NothingHeld:
      break;
  }
  return "The controller has let go of what was held.";
}

}  // namespace

std::string_view RefusalText(PressRefusal refusal) {
  switch (refusal) {
    case PressRefusal::None:
      return "";
    case PressRefusal::OnlyViewing:
      return "Nothing was pressed: the panel is only viewed. Switch to Operate first.";
    case PressRefusal::OldScreen:
      return "Nothing was pressed: the screen is older than a second. Wait until it is up to date.";
    case PressRefusal::NothingThere:
      return "Nothing was pressed: there is nothing to press there.";
    case PressRefusal::Disabled:
      return "Nothing was pressed: it is disabled.";
    case PressRefusal::JustChanged:
      return "Nothing was pressed: something else lay there only a moment before. Look again, and press once more.";
    case PressRefusal::Changed:
      return "Nothing was pressed: what lies there has changed meanwhile. Look again.";
    case PressRefusal::TooSlow:
      return "Nothing was pressed: the link did not come to it within a second.";
    case PressRefusal::TooMany:
      return "Nothing was pressed: too many presses are waiting for the link.";
    case PressRefusal::LookedAway:
      return "Nothing was pressed: the window was left before the link came to it.";
  }
  return "";
}

std::string_view VerdictText(PanelVerdict verdict, PanelAction action) {
  const bool isOperate = action == PanelAction::Operate;
  if (action == PanelAction::Hold) return LetGoText(verdict);
  switch (verdict) {
    case PanelVerdict::Done:
      return "";
    case PanelVerdict::NothingThere:
      return "The controller has pressed nothing: there is nothing to press there.";
    case PanelVerdict::NotWhatWasSeen:
      return isOperate ? "The screen changed just now. Switch to Operate once more."
                       : "The controller has pressed nothing: what lies there has changed meanwhile. Look again.";
    case PanelVerdict::Late:
      return isOperate ? "The link took longer than two seconds. Switch to Operate once more."
                       : "The controller has pressed nothing: the press took longer than two seconds to reach it.";
    case PanelVerdict::NoLease:
      return isOperate ? "Somebody else operates the panel."
                       : "The controller has pressed nothing: this program does not operate the panel any more.";
    case PanelVerdict::OperatedAtPanel:
      return isOperate ? "Somebody operates at the panel itself, and goes first."
                       : "The controller has pressed nothing: who stands at the panel itself goes first.";
    case PanelVerdict::NothingHeld:
      return "";  // asked of a hold alone
    case PanelVerdict::NotNow:
      return isOperate ? "The display is in SYSTEM mode and cannot be operated."
                       : "The controller has pressed nothing: its display is in SYSTEM mode, or it is disabled.";
  }
  return "";
}

}  // namespace kv::panel
