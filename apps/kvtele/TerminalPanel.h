#pragma once

#include <optional>
#include <string>
#include <utility>

#include "KvTele2/panel/PanelSession.h"
#include "apps/kvtele/CacheActions.h"
#include "apps/kvtele/ConnectedController.h"

namespace kv::cli {

// The panel of a controller for commands that show or operate it: waits with the pacer, and tells as a failure why the
// screen does not come.
class TerminalPanel {
 public:
  // Both outlive it. `tool` names it in records.
  TerminalPanel(Environment& environment, ConnectedController& controller, const std::string& tool);

  [[nodiscard]] panel::PanelSession& Session() { return mSession; }
  [[nodiscard]] panel::ScreenResources& Resources() { return mResources; }
  [[nodiscard]] const panel::ScreenModel& Model() const { return *mSession.Model(); }

  // Asks until the whole screen is here, as it is from now on.
  [[nodiscard]] OrFailure<void> Update();
  // Goes on for this long.
  [[nodiscard]] OrFailure<void> Follow(Duration span);
  // One request or one wait, at most until `until`; true: there was a request.
  [[nodiscard]] OrFailure<bool> Go(Instant until);
  // From now on takes fonts and images from this cache, as far as they are still the controller's own.
  void UseCache(ChosenCache cache) { mCache = std::move(cache); }
  // Takes them, also anew where the controller has got others since; says which are missing. False: the cache is of
  // another model.
  [[nodiscard]] OrFailure<bool> TakeFromCache();
  // Takes fonts and images that the screen needs from the controller itself. Those that are of no use are told.
  [[nodiscard]] OrFailure<void> FetchMissing();

  // After a request that failed: whether the next ones may bring the screen back, without anybody's help.
  [[nodiscard]] bool MayGoOn() const;
  // The link's last error as a failure; where it has none, what the session says.
  [[nodiscard]] Failure WhyNot() const;

 private:
  [[nodiscard]] OrFailure<void> Fetch(const panel::Drawing::Missing& missing, const PanelResource& entry);
  [[nodiscard]] OrFailure<void> Fetch(PanelResourceKind kind);

  Environment& mEnvironment;
  ConnectedController& mController;
  PanelLink& mLink;
  panel::ScreenResources mResources;
  panel::PanelSession mSession;
  std::optional<ChosenCache> mCache;
  std::optional<PanelDescription> mTakenFor;  // the panel that the cache was compared with
};

}  // namespace kv::cli
