#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/HostSettings.h"
#include "KvTele2/HostState.h"
#include "KvTele2/HostView.h"
#include "KvTele2/Journal.h"
#include "KvTele2/LinkWatch.h"
#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/panel/PanelSession.h"
#include "KvTele2/panel/ResourceFetch.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "desktop/StopScope.h"
#include "desktop/WallClock.h"
#include "host/shared/RemoteHost.h"

namespace kv {

// The surroundings of the host; all outlive it.
struct HostServices {
  Pacer& pacer;
  WallClock& clock;
  Prompts& prompts;
  std::string installFolder;  // of sibling programs, UTF-8
};

// The host without its window: everything that the main window shows and every rule behind its commands.
//
//   Offline -> Connecting (the channel is looked up) -> Online (GoOnline)
//   Connecting -> Offline                              refused, cancelled, or no answer
//   Online <-> Lost                                    the controller stops answering, or answers again
//   Online, Lost -> Offline -> Connecting              another controller answers: the whole sequence, for that one
//   any -> Offline                                     the command, another session or link, another project
//
// Whoever leaves Connecting, Online or Lost for Offline has the link closed (OnLinkReleased).
//
// While it is on line the controller is asked at times for its run state and project (LinkWatch), from Tick, and only
// while no tool works with it; meanwhile the tool's own exchanges show how it is (FollowTool). Such a question gives
// way to any command: it is stopped, and the command done then.
class TelepanelHost final : public RemoteHost {
 public:
  TelepanelHost(HostView& view, HostServices services);

  [[nodiscard]] const HostState& State() const { return mState; }
  [[nodiscard]] const Journal& Log() const { return mJournal; }
  // Those of the current session.
  [[nodiscard]] const HostSettings& Settings() const { return mSettings; }

  // A command of the main window: a tool's id goes to OnToolClicked, the host's own are done. One that is disabled does
  // nothing.
  void Click(std::string_view id, const std::string& argument = {});
  // Why a command cannot be used now; empty when it can.
  [[nodiscard]] std::string WhyDisabled(std::string_view id) const;
  // To be called about once a second.
  void Tick();
  // To be called instead while another window or a box holds up the main window: what a tool's exchanges have shown of
  // the controller is told; nothing is asked.
  void FollowTool();

  // The panel of the controller that is on line; null: it has none, has not told yet, or none is on line. It ends with
  // the link. Its steps are made here, because the link has other users.
  [[nodiscard]] panel::PanelSession* Panel() { return mState.hasPanel ? mPanel.get() : nullptr; }
  [[nodiscard]] const panel::ScreenResources& PanelResources() const { return mResources; }
  // At most one exchange. To be called when NextPanelStep says so, and after each input; `pressedNow` is what is
  // pressed at this moment.
  void StepPanel(const std::optional<panel::PanelPlace>& pressedNow);
  // Nothing: not before the state has changed.
  [[nodiscard]] std::optional<Duration> NextPanelStep();

  // To be called by the view when a wait behind the user's back has lasted for about a second.
  void NoteSilence();
  // The same while a question to the user stands open, for which that wait waits.
  void NoteQuestion();

  [[nodiscard]] bool Enabled() const override { return mState.isEnabled; }
  void SetEnabled(bool enabled) override;
  // Shown in the status bar and kept in the log; an empty text only clears the status bar.
  void StatusMessage(const std::string& text) override;
  void Refresh() override { Show(); }
  void Run() override;
  void Quit() override;

  void SetSessionName(const std::string& name) override;
  // Another session's folder takes the controller off line and closes the pages file, which belong to the session.
  void SetSessionPath(const std::string& folder) override;
  void SetStartupOption(int) override {}  // there is one way to start
  [[nodiscard]] std::string Model() const override { return mState.model; }
  void SetModel(const std::string& model) override;
  // Another link takes the controller off line.
  void SetComDescription(const std::string& text) override;
  void SetUserName(const std::string& name) override;
  void SetSessionChoice(SessionChoice* choice) override { mSessions = choice; }
  void SetRegionTiles(RegionTiles* tiles) override { mTiles = tiles; }
  [[nodiscard]] std::string InstallFolder() const override { return mServices.installFolder; }
  void SetHourglass(bool busy) override;
  [[nodiscard]] std::vector<std::string> ToolIds() const override;
  void SetToolMissing(const std::string& toolId, const std::string& reason) override;

  bool OpenPagesFile(const std::string& path) override;
  void SetRecentCaches(const std::vector<std::string>& entries) override;
  [[nodiscard]] bool ReadsColourCaches() const override { return true; }
  // The panel is drawn with it from now on, as far as it is the controller's.
  [[nodiscard]] std::expected<bool, std::string> OpenColourCache(const std::string& path) override;
  [[nodiscard]] std::string ChooseColourCache(const std::vector<std::string>& paths, const std::string& model) override;

  [[nodiscard]] bool IsOnline() const override { return mState.connection == ConnectionState::Online; }
  [[nodiscard]] bool HoldsLink() const override { return mChannel != nullptr; }
  void BeginConnect() override;
  void EndConnect() override {}
  void SetConnectedUnit(int unit) override { mUnit = static_cast<std::uint8_t>(unit); }
  void AttachChannel(std::shared_ptr<Channel> channel) override { mChannel = std::move(channel); }
  void SetControllerModelText(const std::string&) override {}  // what the page shows comes from the controller itself
  void SetCompactIdentification(bool) override {}              // the panel's business, as are the two below
  void SetControllerInfoByte(int) override {}
  [[nodiscard]] bool ProjectMatches() override;
  void ConnectionRefused(const std::string& text, const RefusedController& controller) override;
  void ControllerTold(const VersionInfo& version, const Channel::ControllerInfo& info) override;
  void SetPanelData(const std::string& path, const std::string& source) override;
  void GoOnline() override;
  void RunPanelSession(const std::string& caption) override;

 private:
  void Show();
  void Note(const std::string& text);
  void Warn(const std::string& text);

  // To operate: who has given it, and on which connection.
  struct OperateConsent {
    unsigned connection;
    std::string user;
    bool operator==(const OperateConsent&) const = default;
  };
  struct Order {
    std::string id;
    std::string argument;
  };

  void ClickTool(const std::string& id, const std::string& argument);
  void ClickOwn(std::string_view id, const std::string& argument);
  void SavePages();
  void ClosePages();

  // Other sessions, another model (TelepanelHostSessions.cpp).
  void ListSessions();
  void StartSession(const std::string& name);
  void NewSession();
  void Simulate();
  void TakeModel();
  [[nodiscard]] bool MayChangeModel(const std::string& model);

  // The values of the regions (TelepanelHostTiles.cpp).
  void LoadTiles();
  void ReadTiles();
  [[nodiscard]] std::optional<std::size_t> DueTile() const;
  [[nodiscard]] bool ReadTile(std::size_t index);
  void ShowTiles();

  // The panel (TelepanelHostPanel.cpp).
  void OpenPanel();
  void DescribePanel();
  void ClickPanel(std::string_view id);
  void OperatePanel();
  [[nodiscard]] bool AskConsent(const panel::PanelState& panel);
  [[nodiscard]] OperateConsent Consent() const;  // as it would be given now
  [[nodiscard]] std::string WithTime(const std::string& why) const;
  [[nodiscard]] bool OpenAccess();
  void SavePicture();
  void TellPanel();
  [[nodiscard]] bool MayStepPanel() const;
  void MakePanelStep(const std::optional<panel::PanelPlace>& pressedNow);
  void PausePanel();
  void FetchWhenFast();
  [[nodiscard]] bool HasToFetch();
  [[nodiscard]] bool FetchPiece();
  void LosePanelLink(const LinkError& error);
  void StayViewing(const std::string& why);
  [[nodiscard]] std::string WhyPanelDisabled(std::string_view id) const;

  // The cache that the panel is drawn with (TelepanelHostCaches.cpp).
  void UseCache(cache::CacheContent content, const std::string& path);
  void FitCache();
  [[nodiscard]] std::unexpected<std::string> CacheNotOpened(const std::string& path, const std::string& why);

  void Connect(const std::string& argument);
  void GoOffline(const std::string& why, const std::string& trouble);
  void GoOnlineWithOther(const std::string& told);
  void LetGo();
  void AskController(HostView::Wait wait, const std::string& what);
  [[nodiscard]] bool Ask();
  void CountDown();
  void TellMeanwhile(const char* text);
  void EndSilence();
  void NoteInfo(const Channel::ControllerInfo& info);
  void TakeInfo(const Channel::ControllerInfo& info);
  void TakeFailure(const LinkError& error);
  void NoteLoss(const std::string& trouble);
  void BeginWait(HostView::Wait wait, const std::string& what);
  void EndWait();
  // The wait that is under way takes nothing from the user.
  [[nodiscard]] bool IsBehindBack() const { return mWait && mWait != HostView::Wait::Asked; }

  HostView& mView;
  HostServices mServices;
  HostState mState;
  Journal mJournal;
  std::string mSessionFolder;
  HostSettings mSettings{{}};
  std::map<std::string, std::string, std::less<>> mMissing;  // reason by tool id

  SessionChoice* mSessions = nullptr;
  RegionTiles* mTiles = nullptr;
  std::vector<Instant> mTilesDueAt;  // one for each tile
  bool mAreTilesOld = true;          // the session may have other regions by now

  panel::ScreenResources mResources;            // of the controller that is on line
  std::shared_ptr<panel::PanelSession> mPanel;  // while a controller is on line or lost
  std::optional<cache::CacheContent> mCache;    // of the session, that the panel is drawn with
  std::string mCacheName;                       // of its file
  std::optional<panel::ResourceFetch> mFetch;   // on a fast link
  panel::PanelMode mPanelMode{};                // that was told last
  std::optional<OperateConsent> mConsent;       // while nobody else has operated

  std::shared_ptr<Channel> mChannel;
  std::uint8_t mUnit = 0;
  bool mIsRefused = false;                    // in the attempt to connect that is under way
  std::optional<std::string> mOtherProject;   // of the controller that was compared last
  std::optional<std::string> mOtherAnswered;  // another controller, in words, in the place of the one on line
  std::optional<Order> mNext;                 // came during a quiet question
  LinkWatch mWatch;
  Instant mStateAsOf{};        // what the controller told last
  std::string mMessageBefore;  // the silence
  std::string mLastMessage;    // of the tool that is at work
  bool mIsInTool = false;
  bool mIsVersionOld = false;  // the version is to be asked again
  bool mIsAsking = false;
  std::optional<HostView::Wait> mWait;  // under way
  std::optional<StopScope> mStop;       // of that wait
};

}  // namespace kv
