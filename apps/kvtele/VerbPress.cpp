#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <string>
#include <vector>

#include "KvTele2/panel/ScreenText.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/TerminalPanel.h"
#include "apps/kvtele/Verb.h"
#include "base/AnsiText.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "clone/RestoreBegin.h"
#include "clone/RestoreCheck.h"
#include "desktop/UserName.h"
#include "link/LinkLimits.h"

namespace kv::cli {

namespace {

using panel::PanelPlace;
using panel::PressReport;

// Presses one key, or one place of the screen, once, after a question that names it and its controller.
class VerbPress : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "press"; }
  [[nodiscard]] const char* Summary() const override { return "Press a key or a place on the controller's screen"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  // What is to be pressed, as the screen shows it.
  struct Target {
    PanelPlace place;
    panel::TouchItem touch;
    int page = 0;
    std::string words;
  };
  [[nodiscard]] OrFailure<Target> Find(TerminalPanel& panel) const;
  [[nodiscard]] OrFailure<PanelPlace> PlaceOf(TerminalPanel& panel) const;
  [[nodiscard]] OrFailure<void> Operate(Environment& environment, TerminalPanel& panel, const std::string& user) const;
  [[nodiscard]] OrFailure<void> Press(TerminalPanel& panel, const Target& target) const;
  [[nodiscard]] OrFailure<PressReport> Await(TerminalPanel& panel) const;

  std::string mWhat;
  bool mTakeOver = false;
};

constexpr const char* kDoing = "pressing";

const char* VerbPress::Examples() const {
  return "  kvtele --link sim:K220-22-R1 screen            what is there to press?\n"
         "  kvtele --link sim:K220-22-R1 press F1          asks before\n"
         "  kvtele --link sim:K670 --yes press 120,400\n"
         "  kvtele --link sim:K670 --yes press Start\n"
         "It is pressed for a tenth of a second, and once at most. Whoever operates the panel meanwhile is told;\n"
         "--take-over takes it from another one who does so from afar.\n";
}

void VerbPress::Declare(CLI::App& app) {
  app.add_option("WHAT", mWhat, "Name of a key or of a button, or the place X,Y on a colour display")
      ->required()
      ->type_name("");
  app.add_flag("--take-over", mTakeOver, "Take the panel from who operates it from afar");
}

Failure NotThere(const std::string& happened, TerminalPanel& panel) {
  std::string all;
  for (const panel::ScreenText& text : panel::TextsOf(panel.Model(), panel.Resources())) {
    if (text.touch) all += (all.empty() ? "" : ", ") + text.text;
  }
  return NotFitFailure(kDoing, happened, "another page may be shown",
                       all.empty() ? "see kvtele screen" : "what can be pressed: " + all);
}

Failure OutsideScreen(const std::string& point, const PanelDescription& panel) {
  return NotFitFailure(
      kDoing, "the place " + point + " is outside the screen", "",
      "name a place from 0,0 to " + std::to_string(panel.width - 1) + "," + std::to_string(panel.height - 1));
}

// As the one who operates is named to others: the program tells the user who he is beside his own window.
std::string NameAtPanel(const std::string& user) {
  constexpr std::string_view kProgram = " (kvtele)";
  const std::string name = Utf8ToAnsi(user.empty() ? UserName() : user);
  if (name.empty()) return "kvtele";
  return AnsiToUtf8(name.substr(0, kLongestOperator - kProgram.size())) + std::string(kProgram);
}

// "120,400".
std::optional<PanelPlace> ParsePoint(std::string_view text) {
  std::string_view rest = text;
  const auto x = ParseInteger(TakeField(rest, ','));
  const auto y = ParseInteger(rest);
  constexpr NumberRange kDots{0, 65535};
  if (!x || !y || !kDots.Holds(*x) || !kDots.Holds(*y)) return std::nullopt;
  return PanelPlace{.key = std::nullopt, .x = static_cast<int>(*x), .y = static_cast<int>(*y)};
}

OrFailure<PanelPlace> VerbPress::PlaceOf(TerminalPanel& panel) const {
  const panel::ScreenModel& model = panel.Model();
  const bool isColour = model.Panel().kind == PanelKind::Colour;
  if (const auto point = ParsePoint(mWhat)) {
    if (isColour && model.Panel().width > point->x && model.Panel().height > point->y) return *point;
    if (isColour) return std::unexpected(OutsideScreen(mWhat, model.Panel()));
    return std::unexpected(
        NotFitFailure(kDoing, "a text display has keys, and no places to touch", "", "name a key; see kvtele screen"));
  }
  std::vector<PanelPlace> found;
  for (const PanelKey& key : model.Panel().keys) {
    if (UpperCased(panel::ReadableText(key.name)) == UpperCased(mWhat)) found.push_back({.key = key.id});
  }
  for (std::uint16_t slot = panel::kFirstItemSlot; isColour && slot <= model.LastUsedSlot(); ++slot) {
    const auto* touch = model.Get<panel::TouchItem>(slot);
    if (touch == nullptr || UpperCased(panel::ReadableText(touch->name)) != UpperCased(mWhat)) continue;
    const panel::PixelRect& area = touch->area;
    found.push_back({.key = std::nullopt, .x = area.x + area.width / 2, .y = area.y + area.height / 2});
  }
  if (found.size() == 1) return found.front();
  if (found.empty()) return std::unexpected(NotThere("there is no \"" + mWhat + "\"", panel));
  return std::unexpected(NotFitFailure(kDoing, "there are several things called \"" + mWhat + "\"", "",
                                       "name the place of one as X,Y; see kvtele screen"));
}

OrFailure<VerbPress::Target> VerbPress::Find(TerminalPanel& panel) const {
  const panel::ScreenModel& model = panel.Model();
  const auto place = PlaceOf(panel);
  if (!place) return std::unexpected(place.error());
  const auto slot = place->key ? model.MeaningOf(*place->key) : model.AreaAt(place->x, place->y);
  if (!slot) return std::unexpected(NotThere("there is nothing to press at \"" + mWhat + "\"", panel));
  const panel::PanelState state = panel.Session().State();
  if (model.Get<panel::TouchItem>(*slot)->isDisabled) {
    return std::unexpected(NotFitFailure(kDoing, panel::TouchText(*model.Get<panel::TouchItem>(*slot)), "",
                                         "see kvtele screen for what can be pressed now"));
  }
  Target target{*place, *model.Get<panel::TouchItem>(*slot), state.page, {}};
  target.words = panel::TouchText(target.touch) + (place->key ? " (key " + mWhat + ")" : "") + " on page " +
                 std::to_string(state.page) + (state.pageName.empty() ? "" : " \"" + state.pageName + "\"");
  return target;
}

// Asks the session until it tells what became of the wish or the press.
OrFailure<PressReport> VerbPress::Await(TerminalPanel& panel) const {
  while (true) {
    std::vector<PressReport> reports = panel.Session().TakeReports();
    if (!reports.empty()) return std::move(reports.front());
    if (panel.Session().State().sight == panel::PanelSight::NoPanel) return std::unexpected(panel.WhyNot());
    if (const auto went = panel.Go(Instant::max()); !went) return std::unexpected(went.error());
  }
}

Failure FailureOf(const PressReport& report, TerminalPanel& panel) {
  if (report.link != LinkErrorCode::None) return panel.WhyNot();
  const bool isLate = report.verdict == PanelVerdict::Late || report.refusal == panel::PressRefusal::TooSlow;
  return {isLate ? ExitCode::Failed : ExitCode::Refused, "notPressed", kDoing, report.text, {}, "see kvtele screen"};
}

OrFailure<void> VerbPress::Operate(Environment& environment, TerminalPanel& panel, const std::string& user) const {
  const panel::PanelState state = panel.Session().State();
  if (state.isOperatedByOther && !mTakeOver) {
    const std::string who = state.operatorName.empty() ? "somebody else" : state.operatorName;
    return std::unexpected(NotFitFailure(kDoing, who + " operates the panel", "only one can do so at a time",
                                         "wait until it is free, or take it over with --take-over"));
  }
  panel.Session().AskToOperate(NameAtPanel(user), mTakeOver);
  const auto report = Await(panel);
  if (!report) return std::unexpected(report.error());
  if (report->result != PressReport::Result::Done) return std::unexpected(FailureOf(*report, panel));
  if (state.isOperatedByOther) environment.err << "The panel was taken over from " << state.operatorName << ".\n";
  return {};
}

OrFailure<void> VerbPress::Press(TerminalPanel& panel, const Target& target) const {
  panel.Session().Press(target.place);
  const auto report = Await(panel);
  OrFailure<void> pressed;  // known now: the next exchange has an error of its own
  if (!report) {
    pressed = std::unexpected(report.error());
  } else if (report->result != PressReport::Result::Done) {
    pressed = std::unexpected(FailureOf(*report, panel));
  }
  panel.Session().Leave();
  (void)panel.Go(Instant::max());  // gives the lease back; where that fails it ends by itself
  return pressed;
}

VerbResult VerbPress::Run(Environment& environment, const CommonOptions& common) {
  const auto connected = ConnectedController::Open(environment, common);
  if (!connected) return std::unexpected(connected.error());
  ConnectedController& plc = **connected;
  const auto asked = plc.AskInfo();
  if (!asked) return std::unexpected(asked.error());
  TerminalPanel panel(environment, plc, "kvtele press");
  if (const auto updated = panel.Update(); !updated) return std::unexpected(updated.error());
  const auto target = Find(panel);
  if (!target) return std::unexpected(target.error());

  const std::string name = ControllerText(plc.Version(), *asked, plc.Description());
  const auto confirmed = Confirm(environment, {common.yes, "--yes"},
                                 "On the panel of the controller (" + name + "), " + target->words +
                                     " is about to be pressed. The machine may start to move. Continue?",
                                 kDoing, "Telepanel");
  if (!confirmed) return std::unexpected(confirmed.error());

  // While the question was open the controller may have been exchanged, and the page changed.
  if (const auto met = MeetAgain(plc.Link(), *asked); !met) return std::unexpected(CloneFailure(kDoing, met.error()));
  if (!plc.Link().EnsureAccess(plc.Unit())) return std::unexpected(plc.LastFailure());
  if (const auto updated = panel.Update(); !updated) return std::unexpected(updated.error());
  if (const auto done = Operate(environment, panel, common.user); !done) return std::unexpected(done.error());
  if (const auto settled = panel.Follow(panel::Operator::kSettles); !settled) return std::unexpected(settled.error());
  const auto now = Find(panel);
  const bool isSame = now && now->touch.IsSameTarget(target->touch) && now->page == target->page;
  if (!isSame) {
    panel.Session().Leave();
    (void)panel.Go(Instant::max());
    return std::unexpected(NotFitFailure(kDoing, target->words + " is not what lies there any more",
                                         "the screen has changed", "see kvtele screen, and press again"));
  }
  if (const auto pressed = Press(panel, *now); !pressed) return std::unexpected(pressed.error());
  environment.err << "Pressed: " << target->words << " of " << name << ".\n";
  return VerbOutput{"", {{"controller", name}, {"pressed", target->words}, {"page", target->page}}};
}

}  // namespace

std::unique_ptr<Verb> MakeVerbPress() {
  return std::make_unique<VerbPress>();
}

}  // namespace kv::cli
