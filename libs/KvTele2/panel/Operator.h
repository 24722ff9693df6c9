#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "KvTele2/panel/PanelWords.h"
#include "KvTele2/panel/ScreenModel.h"
#include "base/Time.h"
#include "link/PanelLink.h"

namespace kv::panel {

// Where somebody presses: a key by its id, or a dot of a colour display.
struct PanelPlace {
  std::optional<std::uint8_t> key{};
  int x = 0;
  int y = 0;
  bool operator==(const PanelPlace&) const = default;
};

enum class PanelMode : std::uint8_t {
  View,     // looks on. No input leaves, whatever is called
  Asking,   // wants to operate, and the controller has not answered yet
  Operate,  // has the lease
};

// What became of a press, or of the wish to operate. Each is told once.
struct PressReport {
  enum class Result {
    Done,
    NotDone,  // certainly not
    Unsure,   // it may have been done: the answer was lost
  };
  Result result = Result::Done;
  PanelAction action = PanelAction::Tap;
  PanelPlace place{};
  std::string what;  // "button \"Start\"", UTF-8; empty for Operate
  std::string text;  // a sentence for the user; empty where there is nothing to say
  // Why: the controller's, or ours, or the link's.
  PanelVerdict verdict = PanelVerdict::Done;
  PressRefusal refusal = PressRefusal::None;
  LinkErrorCode link = LinkErrorCode::None;
};

// The screen that decisions are made on.
struct ScreenNow {
  const ScreenModel& model;
  Instant now;
  Duration age;         // of what the model holds
  std::uint32_t stamp;  // of the last changes
  unsigned connection;  // that they came over
};

// Decides what input leaves for a controller, and when. It sends nothing itself: Next gives the one event that is due,
// and what became of it is noted before the next one is asked for.
//
//   View -> Asking (AskToOperate) -> Operate (a lease came) -> View (Leave, LoseLease, a lease that is not good)
//                                 -> View (refused)
//   In Operate: a press waits -> is sent as down while it is still pressed, else as a tap -> held -> up.
//               A press where nothing lies while some of the screen is still on its way waits for that, too.
//
// Held is only what the caller of Next says is pressed at that very moment: who does not call lets go. A hold is
// renewed every 200 ms; the controller lets go 500 ms after the last renewal. Nothing is pressed or held on to on a
// screen older than a second; letting go is always sent. Nor is anything pressed where another thing lay a moment ago,
// which may have been meant: one that is new in an empty place can be pressed at once, and so can one that was there.
class Operator {
 public:
  static constexpr Duration kOldScreen = std::chrono::seconds(1);
  static constexpr Duration kRenewal = std::chrono::milliseconds(200);
  static constexpr Duration kLetsGo = std::chrono::milliseconds(500);   // the controller, by itself
  static constexpr Duration kSettles = std::chrono::milliseconds(200);  // until then what lay there before may be meant
  static constexpr Duration kLeaseEnds = std::chrono::seconds(3);       // in the controller, when nobody names it
  static constexpr Duration kLongestWait = std::chrono::seconds(1);     // of a press for the link
  static constexpr std::size_t kMostWaiting = 8;

  // What the user does. A name is Windows-1252; of a longer one than kLongestOperator goes the beginning.
  void AskToOperate(std::string name, bool takesOver);
  // View at once; the lease is given back with the next event.
  void Leave();
  // Something is pressed now, and may be let go before anything is sent. A refusal is told as a report, too.
  PressRefusal Press(const PanelPlace& place, const ScreenNow& screen);
  // What waits is not sent any more.
  void DropPresses(PressRefusal why);

  // The event that is due, and its words for journal and reports.
  struct Due {
    PanelEvent event;
    PanelPlace place{};
    std::string what;
  };
  [[nodiscard]] std::optional<Due> Next(const std::optional<PanelPlace>& pressedNow, const ScreenNow& screen);
  // When Next has something by itself: at once, at a moment, or never.
  [[nodiscard]] std::optional<Instant> NextDue(Instant now) const;

  // What became of an event.
  void NoteAnswer(const Due& due, const PanelChanges& changes, Instant began);
  void NoteFailure(const Due& due, const LinkError& error);
  // Of every reply, also those to events: who has the lease, what is held.
  void NoteChanges(const PanelChanges& changes, const ScreenModel& model);
  // `drawn`: what of the picture was drawn anew with it.
  void NoteScreen(const ScreenDelta& delta, const std::vector<PixelRect>& drawn, const ScreenModel& model, Instant now);
  // View, without anything being sent; `why` is a sentence for the user.
  void LoseLease(const std::string& why);

  [[nodiscard]] PanelMode Mode() const { return mMode; }
  [[nodiscard]] std::uint16_t Lease() const { return mLease; }
  [[nodiscard]] bool IsHolding() const { return mHeld.has_value(); }
  [[nodiscard]] std::optional<PanelPlace> Held() const { return mHeld ? std::optional(mHeld->place) : std::nullopt; }
  // Why it is View again; empty: it was wanted, or never was anything else.
  [[nodiscard]] const std::string& WhyViewing() const { return mWhyViewing; }
  [[nodiscard]] std::vector<PressReport> TakeReports();

 private:
  struct Pressed {
    PanelPlace place;
    std::uint16_t slot = 0;
    TouchItem seen{};
    std::uint16_t epoch = 0;
    std::uint16_t page = 0;
    Instant made{};       // pressed by the user
    Instant renewed{};    // sent, or held on to
    bool isDown = false;  // a down has gone out for it
    bool isOpen = false;  // what lies there is on its way: slot and seen are not known yet
    std::vector<PixelRect> drawnSince{};
  };

  // What can be pressed, and what could be a moment ago.
  struct Known {
    std::uint16_t slot;
    std::uint16_t page;
    TouchItem touch;
    Instant since;
    Instant until = Instant::max();
  };

  [[nodiscard]] std::optional<std::uint16_t> SlotAt(const PanelPlace& place, const ScreenModel& model) const;
  [[nodiscard]] PressRefusal Judge(const PanelPlace& place, const ScreenNow& screen, Pressed& pressed) const;
  [[nodiscard]] const Known* LayAt(const PanelPlace& place, Instant at) const;
  [[nodiscard]] std::vector<const Known*> LayThere(const Pressed& pressed) const;
  [[nodiscard]] PressRefusal Identify(Pressed& pressed, const ScreenModel& model) const;
  [[nodiscard]] PressRefusal WhyNotSent(Pressed& pressed, const ScreenNow& screen) const;
  [[nodiscard]] bool IsStillThere(const Pressed& pressed, const ScreenModel& model) const;
  [[nodiscard]] bool IsOn(const Pressed& pressed, const std::optional<PanelPlace>& now, const ScreenModel& model) const;
  [[nodiscard]] std::optional<Due> NextPress(const std::optional<PanelPlace>& pressedNow, const ScreenNow& screen);
  [[nodiscard]] Due MakeDue(PanelAction action, const Pressed& pressed, const ScreenNow& screen) const;
  [[nodiscard]] PanelEvent MakeEvent(PanelAction action, const ScreenNow& screen) const;
  void Report(PressReport report) { mReports.push_back(std::move(report)); }
  void View();

  PanelMode mMode = PanelMode::View;
  std::uint16_t mLease = 0;
  std::uint16_t mLeaving = 0;  // a lease that is to be given back
  std::string mName;
  bool mTakesOver = false;
  std::string mWhyViewing;
  std::deque<Pressed> mWaiting;
  std::optional<Pressed> mSent;  // the press whose answer is awaited
  std::optional<Pressed> mHeld;
  std::vector<PressReport> mReports;
  std::vector<Known> mKnown;
};

}  // namespace kv::panel
