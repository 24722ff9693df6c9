#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KvTele2/panel/Drawing.h"
#include "KvTele2/panel/Operator.h"
#include "KvTele2/panel/Rhythm.h"
#include "KvTele2/panel/ScreenModel.h"
#include "KvTele2/panel/ScreenResources.h"
#include "desktop/Pacer.h"
#include "link/ChangeObserver.h"
#include "link/PanelLink.h"

namespace kv::panel {

// What a session stands on; all of it outlives the session.
struct PanelParts {
  Pacer& pacer;
  PanelLink& link;
  ScreenResources& resources;
  ChangeObserver* changes = nullptr;  // null: presses are not recorded
  std::uint8_t unit = 1;
  std::string tool = "Panel";  // as records name it
};

// How far what is shown can be relied on.
enum class PanelSight : std::uint8_t {
  Starting,  // nothing is known yet
  NoPanel,   // the controller has no display, or does not show it
  Live,      // not older than a second
  Old,       // it is, or was not understood: shown pale, with its age and `reason`
  Paused,    // a tool has the link
};

// All that there is to be told beside the picture. Texts are UTF-8.
struct PanelState {
  PanelSight sight = PanelSight::Starting;
  Duration age{};      // of what is shown; 0 before there is anything
  std::string reason;  // why it is old, or why there is no panel; empty: nothing to say
  PanelMode mode = PanelMode::View;
  std::string whyViewing;    // why Operate has ended or did not come; empty: it was wanted so
  std::string operatorName;  // who has the lease, this user included; empty: nobody
  bool isOperatedByOther = false;
  bool isOperatedAtPanel = false;
  bool isSystemMode = false;
  std::optional<PanelPlace> held;  // what the controller holds for this user at this moment
  int page = 0;
  std::string pageName;
  bool isWhole = false;  // nothing of the screen is still on its way
};

// A controller's panel for whoever shows it: what is pressed comes in, a picture with its changed rectangles and the
// state come out. It never waits by itself; somebody calls Step when NextStep says so, and after each input.
//
// Threads: all calls on the one thread of the link, that of the user interface. Step makes at most one exchange. Events
// that the wait lets in may call everything but have no step of their own: such a Step does nothing.
//
//   Press(place)          when a button or a finger goes down, once; it is sent with the next Step
//   Step(pressedNow)      what is pressed at this very moment, seen fresh from the window (it has the focus, the
//   pointer
//                         is on it, the button is down), or nothing. Only that renews what is held, so a window that
//                         hangs lets go, and so does one that lost its focus
//   DropPresses()         focus gone, screen locked, machine about to sleep
//
// Coordinates are dots of the picture of a colour display; a text display has keys, no points. Errors of the link are
// told in the state (`reason`) and, where they touched a press, in its report.
class PanelSession {
 public:
  explicit PanelSession(const PanelParts& parts);
  ~PanelSession();
  PanelSession(const PanelSession&) = delete;
  PanelSession& operator=(const PanelSession&) = delete;

  // At most one exchange: input first, then changes of the screen. True: there was one.
  bool Step(const std::optional<PanelPlace>& pressedNow);
  // How long until Step has something to do; nothing: not before something is called.
  [[nodiscard]] std::optional<Duration> NextStep() const;

  // Whether anybody sees the picture. Hidden, nothing is asked for and what waits is dropped.
  void Show(bool isShown);
  // A tool takes the link: what is held is let go now, nothing is sent until Resume. Operating ends in the controller
  // by itself when that takes longer than three seconds.
  void Pause();
  void Resume();

  // The next step asks for changes, whatever the rhythm says.
  void AskNow();
  // Another request has found that the link is lost; `why` is what the state tells.
  void LoseLink(const std::string& why);

  // Input. None: it will be sent; any other is told as a report as well.
  PressRefusal Press(const PanelPlace& place);
  void DropPresses();
  // Wants to operate: from View only, with the user's consent of now; Channel::EnsureAccess goes before it, so that no
  // question for a password comes between. `name` is his, UTF-8, cut to 20 characters. What
  // came of it is a report with the action Operate.
  void AskToOperate(const std::string& name, bool takesOver);
  // View at once.
  void Leave();
  [[nodiscard]] std::vector<PressReport> TakeReports() { return mOperator.TakeReports(); }

  // What comes out.
  [[nodiscard]] PanelState State() const;
  // Null before the controller has described its panel, and where it has none.
  [[nodiscard]] const PanelDescription* Panel() const;
  [[nodiscard]] const ScreenModel* Model() const;
  [[nodiscard]] const Picture* Dots() const;
  // What has changed in the picture since the last call; after another controller's panel all of it.
  [[nodiscard]] std::vector<PixelRect> TakeChanged();
  // Fonts and images that the picture shows as framed places.
  [[nodiscard]] std::vector<Drawing::Missing> MissingResources() const;
  // Twice a second where HasBlinking says so.
  void ShowBlinking(bool isSeen);
  [[nodiscard]] bool HasBlinking() const;
  // Resources have come: everything that they change is drawn anew.
  void Redraw();

 private:
  struct Screen;

  [[nodiscard]] bool Exchange(const std::optional<PanelPlace>& pressedNow);
  [[nodiscard]] bool SendDue(const std::optional<PanelPlace>& pressedNow);
  void Describe();
  void Ask();
  void TakeIn(const PanelChanges& changes, Instant began, const Operator::Due* due);
  void FailLink(bool isEvent);
  void NoteConnection();
  std::vector<PixelRect> DrawChanged();
  [[nodiscard]] ScreenNow Now() const;
  [[nodiscard]] bool IsPausedForLong() const;
  [[nodiscard]] Duration Age() const;

  Pacer& mPacer;
  PanelLink& mLink;
  ScreenResources& mResources;
  ChangeObserver* mChanges;
  std::uint8_t mUnit;
  std::string mTool;

  std::unique_ptr<Screen> mScreen;
  Operator mOperator;
  std::optional<Rhythm> mRhythm;
  std::vector<PixelRect> mChangedAreas;
  PanelState mState;             // what stays between two replies
  std::optional<Instant> mAsOf;  // the request of the last good reply went out
  std::uint32_t mStamp = 0;
  unsigned mConnection = 0;
  Instant mNextTry{};      // of a description that did not come
  bool mAsksAnew = false;  // the last reply was not understood
  bool mMustDescribe = true;
  bool mIsShown = true;
  std::optional<Instant> mPausedAt;
  bool mIsStepping = false;
};

}  // namespace kv::panel
