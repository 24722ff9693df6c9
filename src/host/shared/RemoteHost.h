#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/shared/RegionTiles.h"
#include "host/shared/SessionChoice.h"
#include "link/Channel.h"

namespace kv {

// What is known of a controller that is refused.
struct RefusedController {
  VersionInfo version;                          // the model as it was reported, not what that stands for
  std::optional<Channel::ControllerInfo> info;  // nothing when it did not tell
};

// What tools ask of the host: the program that owns the main window, the selected model and the panel session. The host
// library implements it; tests implement it by recording.
//
// Texts are UTF-8. Paths are complete. Everything runs on the user-interface thread.
class RemoteHost {
 public:
  virtual ~RemoteHost() = default;

  // Event: a toolbar or menu command that belongs to a tool, with the tool's id ("ID_DataTypes") and a free text.
  std::function<void(const std::string& toolId, const std::string& argument)> OnToolClicked;

  // Event: the host has let go of the controller, and the link is to be closed, so that others can use it and the next
  // attempt to go on line begins anew.
  std::function<void()> OnLinkReleased;

  // Event: the user wants to see what passes on the link.
  std::function<void()> OnTraceWanted;

  // Whether the host takes user input. Tools set it to false while their modal window is open.
  [[nodiscard]] virtual bool Enabled() const = 0;
  virtual void SetEnabled(bool enabled) = 0;

  virtual void StatusMessage(const std::string& text) = 0;
  virtual void Refresh() = 0;
  // Runs the host until the user leaves it; every tool is used inside this call, through the event above.
  virtual void Run() = 0;
  virtual void Quit() = 0;

  virtual void SetSessionName(const std::string& name) = 0;
  virtual void SetSessionPath(const std::string& folder) = 0;
  virtual void SetStartupOption(int option) = 0;
  [[nodiscard]] virtual std::string Model() const = 0;
  virtual void SetModel(const std::string& model) = 0;
  virtual void SetComDescription(const std::string& text) = 0;
  virtual void SetUserName(const std::string& name) = 0;
  // For a host that offers the sessions by itself, and for one that shows the values of their regions. Null takes back
  // what was given before, which otherwise outlives the host.
  virtual void SetSessionChoice(SessionChoice*) {}
  virtual void SetRegionTiles(RegionTiles*) {}
  // The folder in which sibling programs are installed.
  [[nodiscard]] virtual std::string InstallFolder() const = 0;
  // While true the pointer is the hourglass.
  virtual void SetHourglass(bool busy) = 0;

  // The ids of the tools that the host offers in its menus.
  [[nodiscard]] virtual std::vector<std::string> ToolIds() const = 0;
  // Tools that this build does not have: shown greyed, with `reason` as their tooltip.
  virtual void SetToolMissing(const std::string& toolId, const std::string& reason) = 0;

  // The Telepanel pages file. Opening reports its own errors and keeps the file that was open when the new one is bad.
  virtual bool OpenPagesFile(const std::string& path) = 0;
  // The recent colour cache files, newest first.
  virtual void SetRecentCaches(const std::vector<std::string>& entries) = 0;
  // Whether this host reads colour cache files at all.
  [[nodiscard]] virtual bool ReadsColourCaches() const = 0;
  // True: the panel is drawn with this file from now on. False: it is not, and the user has been told why. The error:
  // why it cannot be opened, and what to do, sentences for the user.
  [[nodiscard]] virtual std::expected<bool, std::string> OpenColourCache(const std::string& path) = 0;
  // Which of these cache files, the best first and at least one, is taken for a controller that reports itself as
  // `model`: the first one that is whole and of that model. Where none is, the first one, and what is wrong with it is
  // told when it is used.
  [[nodiscard]] virtual std::string ChooseColourCache(const std::vector<std::string>& paths,
                                                      const std::string& model) = 0;

  // Going on line.
  [[nodiscard]] virtual bool IsOnline() const = 0;
  // Whether the host works with the channel that was attached: on line, or waiting for a lost controller.
  [[nodiscard]] virtual bool HoldsLink() const = 0;
  virtual void BeginConnect() = 0;  // around the lookup of the channel
  virtual void EndConnect() = 0;
  virtual void SetConnectedUnit(int unit) = 0;
  virtual void AttachChannel(std::shared_ptr<Channel> channel) = 0;
  virtual void SetControllerModelText(const std::string& text) = 0;
  virtual void SetCompactIdentification(bool compact) = 0;
  // The panel information byte, 0 to 255; -1 (all bits set) when it is not known.
  virtual void SetControllerInfoByte(int value) = 0;
  // Whether the open pages file belongs to the controller's project; true when no file is open.
  [[nodiscard]] virtual bool ProjectMatches() = 0;
  // The controller that has just been identified is refused, and why. The user is told by whoever refuses it.
  virtual void ConnectionRefused(const std::string& text, const RefusedController& controller) = 0;
  // A tool has been told this by the controller that is on line, which it may have changed.
  virtual void ControllerTold(const VersionInfo& /*version*/, const Channel::ControllerInfo& /*info*/) {}
  // The file from which a colour panel draws its data, a copy of `source`.
  virtual void SetPanelData(const std::string& path, const std::string& source) = 0;
  virtual void GoOnline() = 0;
  // Runs the panel session of a controller that is on line; `caption` is the host's own setting, "0" when it has none.
  virtual void RunPanelSession(const std::string& caption) = 0;
};

}  // namespace kv
