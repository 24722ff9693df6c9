#include "KvTele2/cache/SystemMode.h"

#include "desktop/StopScope.h"
#include "link/BlockOperations.h"
#include "link/BlockRefusal.h"
#include "link/DownloadEngine.h"
#include "link/ErrorMeaning.h"

namespace kv::cache {

std::expected<void, LinkError> SystemMode::Tell(bool isOn) {
  DownloadEngine* engine = mLink.GetDownloadEngine();
  if (engine == nullptr) return std::unexpected(mLink.LastError());
  engine->SetMessage(
      {.opCode = BlockOperation::kDisplayMode, .param1 = isOn ? 1U : 0U, .dataLength = 0, .param3 = 0, .param4 = 0});
  if (!engine->Send()) return std::unexpected(mLink.LastError());
  auto refusal = RefusalOf(engine->ReplyStatus());
  if (!refusal) return {};
  refusal->doing = isOn ? "showing SYSTEM mode on the display" : "ending SYSTEM mode on the display";
  return std::unexpected(*std::move(refusal));
}

std::expected<void, LinkError> SystemMode::Enter() {
  const auto entered = Tell(true);
  mMayBeOn = entered.has_value() || !MeansNotExecuted(entered.error());
  return entered;
}

// To be told twice changes nothing, so it is tried anew where it may not have arrived.
std::string SystemMode::Leave() {
  if (!mMayBeOn) return {};
  constexpr int kTries = 3;
  const StopScope leaving(mPacer);  // a stop from before does not keep the display from its user
  std::expected<void, LinkError> left;
  for (int i = 0; i < kTries; ++i) {
    left = Tell(false);
    if (left || IsRefusal(left.error().code) || left.error().code == LinkErrorCode::OtherController) break;
  }
  mMayBeOn = !left;
  if (left) return {};
  return "The controller's display may still show SYSTEM mode, for it could not be told to end it (" +
         left.error().happened + "). Its program runs on. Import again, or switch the controller off and on.";
}

std::string SystemMode::LeaveIfShown() {
  const auto screen = mLink.Panel()->Changes({.have = {}, .most = kLeastPanelPiece, .lease = 0}, mLink.UnitID());
  mMayBeOn = screen && screen->isSystemMode;
  return Leave();
}

}  // namespace kv::cache
