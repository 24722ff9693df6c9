#pragma once

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/HostParts.h"
#include "host/ToolWindow.h"
#include "host/shared/SharedState.h"

namespace kv {

struct ToolRow;

// The program's life and its tool dispatch: creates the host and the driver, lets the host run, opens a tool for every
// command that the host hands back, and takes everything down again.
//
//   made -> StartUp: running inside the host's Run() -> shut down
class clsCallerExe final : private SessionChoice {
 public:
  explicit clsCallerExe(HostParts parts);
  ~clsCallerExe() override;

  // The whole life of the program; returns when the host has ended.
  void StartUp();

  // Opens the tool with this id. Ids are compared exactly; an unknown one does nothing, nor does one whose window this
  // build does not have.
  void mRemote_OnToolClicked(const std::string& toolId, const std::string& argument);

  void mVsCon_OnComMessage(const std::string& message);

  // One value of the host's settings in the current session.
  [[nodiscard]] std::string ReadFromRemoteIni(const std::string& key, const std::string& fallback) const;

  // The host; null before StartUp and after it.
  [[nodiscard]] RemoteHost* Remote() const { return mShared.Remote; }

  void UpdateLinkDescription();

  // While set, "ID_Help" does nothing; the tool id "Escape" clears it. For whoever takes the help key for himself.
  bool HelpSuppressed = false;

  // Events of the Ethernet socket.
  void mWinsock_ConnectionRequest(int requestId);
  void mWinsock_Close();

 private:
  friend std::span<const ToolRow> ToolTable();

  void ConnectHost();
  void BeginInDefaultSession();
  void LoadLastModel();
  void LoadSocket();
  void ConnectDriver();
  void GreyMissingTools();
  void RunHost();
  void ShutDown();
  [[nodiscard]] bool IsMissing(const std::string& toolId) const;
  [[nodiscard]] std::string WhyGrey(const std::string& toolId) const;
  void ReleaseLink();
  void ShowWindow(const std::string& toolId, const std::string& argument);
  void Open(const std::string& verb, const std::filesystem::path& file, const std::string& parameters = "");
  [[nodiscard]] std::filesystem::path InstalledProgram(const char* name) const;
  void Warn(const std::string& text);
  void TellHost(const std::string& text);
  void TellSession(const std::string& before);
  void FollowSession();
  void UpdateLinkDescriptionIfNot(const std::string& shown);

  [[nodiscard]] std::vector<SessionCard> Sessions() const override;
  [[nodiscard]] std::string SessionsFault() const override;
  bool ActivateSession(const std::string& name) override;
  bool CreateSession(const std::string& name) override;
  bool ActivateSimulated(const std::string& name, const std::string& model) override;

  // The tools of the dispatch table, in its order.
  void ShowComParams(const std::string& argument);
  void ShowModem(const std::string& argument);
  void OnLine(const std::string& argument);
  void Exit(const std::string& argument);
  void ChangeModel(const std::string& argument);
  void Escape(const std::string& argument);
  void Help(const std::string& argument);
  void Session(const std::string& argument);
  void PanelDesign(const std::string& argument);
  void LogOff(const std::string& argument);
  void PidServer(const std::string& argument);
  void DownloadDesigner(const std::string& argument);
  void PagesFile(const std::string& argument);
  void ImportFontsAndImages(const std::string& file);
  void DumpPlc(const std::string& argument);

  HostParts mParts;
  SharedState mShared;
  ToolWindows mWindows;
  std::shared_ptr<RemoteHost> mRemote;
  std::unique_ptr<frmTAPI> mTapi;
  ListeningSocket* mWinsock = nullptr;
  std::unique_ptr<CommDriver> mVsCon;
};

}  // namespace kv
