#pragma once

#include <expected>
#include <optional>
#include <ostream>
#include <string>

#include "KvTele2/ControllerFacts.h"
#include "KvTele2/PagesFile.h"
#include "KvTele2/cache/CacheScreen.h"
#include "base/AnsiText.h"
#include "host/shared/RemoteHost.h"

namespace kv::cli {

// The host of a program without windows: keeps what going on line tells it, so that it can be printed, and prints
// status messages. It has no panel and no recent caches of its own.
class ConsoleHost final : public RemoteHost {
 public:
  // `pages` is the file whose project the controller must hold; nothing lets every project pass.
  ConsoleHost(std::ostream& err, std::string model, std::string installFolder, std::optional<PagesFile> pages)
      : mErr(err), mModel(std::move(model)), mInstallFolder(std::move(installFolder)), mPages(std::move(pages)) {}

  // What the controller's panel would be shown with; nothing where the sequence did not say.
  struct Panel {
    std::optional<int> information;  // 0 to 255
    std::string data;                // path of the file that its data is copied from; empty: none
    std::string caption;
  };
  [[nodiscard]] const Panel& PanelSettings() const { return mPanel; }
  // Why the controller was refused, with line feeds between the lines; empty when it was not.
  [[nodiscard]] const std::string& Refusal() const { return mRefusal; }

  [[nodiscard]] bool Enabled() const override { return mIsEnabled; }
  void SetEnabled(bool enabled) override { mIsEnabled = enabled; }
  void StatusMessage(const std::string& text) override { mErr << text << "\n"; }
  void Refresh() override {}
  void Run() override {}
  void Quit() override {}
  void SetSessionName(const std::string&) override {}
  void SetSessionPath(const std::string&) override {}
  void SetStartupOption(int) override {}
  [[nodiscard]] std::string Model() const override { return mModel; }
  void SetModel(const std::string& model) override { mModel = model; }
  void SetComDescription(const std::string&) override {}
  void SetUserName(const std::string&) override {}
  [[nodiscard]] std::string InstallFolder() const override { return mInstallFolder; }
  void SetHourglass(bool) override {}
  [[nodiscard]] std::vector<std::string> ToolIds() const override { return {}; }
  void SetToolMissing(const std::string&, const std::string&) override {}
  bool OpenPagesFile(const std::string&) override { return false; }
  void SetRecentCaches(const std::vector<std::string>&) override {}
  [[nodiscard]] bool ReadsColourCaches() const override { return false; }
  [[nodiscard]] std::expected<bool, std::string> OpenColourCache(const std::string&) override { return false; }
  [[nodiscard]] std::string ChooseColourCache(const std::vector<std::string>& paths,
                                              const std::string& model) override {
    const cache::CacheChoice choice = cache::ChooseCache(paths, model);
    for (const std::string& why : choice.passedOver) StatusMessage(why);
    return paths[choice.index];
  }

  [[nodiscard]] bool IsOnline() const override { return mIsOnline; }
  [[nodiscard]] bool HoldsLink() const override { return mChannel != nullptr; }
  void BeginConnect() override {}
  void EndConnect() override {}
  void SetConnectedUnit(int unit) override { mUnit = static_cast<std::uint8_t>(unit); }
  void AttachChannel(std::shared_ptr<Channel> channel) override { mChannel = std::move(channel); }
  void SetControllerModelText(const std::string&) override {}
  void SetCompactIdentification(bool) override {}
  void SetControllerInfoByte(int value) override {
    mPanel.information = value < 0 ? std::nullopt : std::optional(value);
  }
  // A controller that does not answer counts as the right project: the next question finds that it is lost.
  [[nodiscard]] bool ProjectMatches() override {
    if (!mPages) return true;
    const auto info = mChannel->GetControllerInfo(mUnit);
    if (!info || IsOfProject(*mPages, info->projectName)) return true;
    mOtherProject = "\n" + OtherProjectText(*mPages, AnsiToUtf8(info->projectName));
    return false;
  }
  void ConnectionRefused(const std::string& text, const RefusedController& controller) override {
    mRefusal = RefusalText(text, ControllerFactsOf(controller, mUnit)) + mOtherProject;
  }
  void SetPanelData(const std::string&, const std::string& source) override { mPanel.data = source; }
  void GoOnline() override { mIsOnline = true; }
  void RunPanelSession(const std::string& caption) override { mPanel.caption = caption; }

 private:
  std::ostream& mErr;
  std::string mModel;
  std::string mInstallFolder;
  std::optional<PagesFile> mPages;
  std::shared_ptr<Channel> mChannel;
  std::uint8_t mUnit = 0;
  std::string mOtherProject;  // a line about the project that was found instead
  std::string mRefusal;
  Panel mPanel;
  bool mIsEnabled = true;
  bool mIsOnline = false;
};

}  // namespace kv::cli
