#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <string>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/Failure.h"
#include "desktop/console/ConsolePrompts.h"
#include "host/shared/SharedState.h"
#include "journal/ChangeRecorder.h"
#include "link/CommDriver.h"
#include "link/PromptedPassword.h"

namespace kv::cli {

// A controller that has been reached and said who it is. Closes the link when it goes.
class ConnectedController {
 public:
  // Reaches the controller that the options describe and identifies it. With --model it must be that model.
  // AtAnySpeed also finds one on a serial line that a download has left at the speed of its boot loader.
  enum class Reaching { AsSet, AtAnySpeed };
  [[nodiscard]] static OrFailure<std::unique_ptr<ConnectedController>> Open(Environment& environment,
                                                                            const CommonOptions& common,
                                                                            Reaching reaching = Reaching::AsSet);
  ~ConnectedController();
  ConnectedController(const ConnectedController&) = delete;
  ConnectedController& operator=(const ConnectedController&) = delete;

  [[nodiscard]] Channel& Link() { return *mChannel; }
  [[nodiscard]] CommDriver& Driver() { return *mDriver; }
  [[nodiscard]] std::uint8_t Unit() const { return mChannel->UnitID(); }
  [[nodiscard]] const VersionInfo& Version() const { return mVersion; }
  // The model that the catalogue is asked about.
  [[nodiscard]] const std::string& Model() const { return mModel; }
  // The model that is selected in the session whose link this is; empty when the link was named by itself.
  [[nodiscard]] const std::string& SelectedModel() const { return mSelectedModel; }
  [[nodiscard]] std::string Description() const { return mDriver->LinkDescription(); }
  // Asks for its state, serial number and project.
  [[nodiscard]] OrFailure<Channel::ControllerInfo> AskInfo();

  // How a link that was lost comes back: by itself with the next requests, by dialling again (a call costs money, so
  // not by itself), or not at all, as the session's settings say.
  enum class Reconnecting { ByItself, ByDialling, Not };
  [[nodiscard]] Reconnecting HowItReconnects() const;
  // How often in a row a lost call may be dialled again.
  [[nodiscard]] int Redials() const { return mSettings.modem.redials; }
  // Opens a link that was lost; the reason when that failed.
  [[nodiscard]] std::expected<void, LinkError> Reopen();

  // Why the last call of the channel failed.
  [[nodiscard]] Failure LastFailure() const { return LinkFailure(mChannel->LastError(), true); }

 private:
  ConnectedController(Environment& environment, const CommonOptions& common, std::unique_ptr<CommDriver> driver,
                      LinkSettings settings);

  [[nodiscard]] OrFailure<void> Reach(Reaching reaching);
  void RecordChanges(Environment& environment, const CommonOptions& common);
  void TellOtherSpeed(Environment& environment) const;

  ConsolePrompts mPrompts;
  Secret mKnown;  // beforehand
  PromptedPassword mPassword;
  std::ostream& mErr;
  SharedState mShared;
  ConsolePrompts mJournalPrompts;
  std::unique_ptr<ChangeRecorder> mRecorder;  // null: nothing is recorded
  std::unique_ptr<CommDriver> mDriver;
  LinkSettings mSettings;
  std::shared_ptr<Channel> mChannel;
  VersionInfo mVersion;
  std::string mModel;
  std::string mSelectedModel;
};

}  // namespace kv::cli
