#include "apps/kvtele/VerbOnline.h"

#include <array>
#include <string_view>

#include "apps/kvtele/Connection.h"
#include "apps/kvtele/ConsoleHost.h"
#include "apps/kvtele/DocumentText.h"
#include "apps/kvtele/NotedPrompts.h"
#include "apps/kvtele/ProgramFolder.h"
#include "base/AnsiText.h"
#include "link/identification/GoOnline.h"
#include "sessions/SessionIni.h"

namespace kv::cli {

namespace {

constexpr std::string_view kDoing = "going on line";

// clang-format off
constexpr std::array kLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"reported as    ", "reported"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"unit           ", "unit"},
    DocumentLine{"link           ", "link"},
    DocumentLine{"project        ", "project"},
    DocumentLine{"panel data     ", "panelData"},
    DocumentLine{"panel byte     ", "panelInformation"},
};
// clang-format on

// One run: the driver on its link, and the host that is told about it.
class OnlineRun {
 public:
  OnlineRun(Environment& environment, const CommonOptions& common, CommDriver& driver)
      : mShared(PathsOf(environment, common)), mDriver(driver) {
    mShared.CurrentSession = common.session;
    const std::string model = common.model.empty() ? LastModel(mShared) : common.model;
    mHost.emplace(environment.err, model, Utf8FromPath(mShared.paths.Home()));
    mShared.Remote = &*mHost;
    mShared.ComDriver = &driver;
  }

  Outcome Run() {
    mDriver.SetDriverActive(true);
    mChannel = mDriver.GetChannel();
    if (!mChannel) return std::unexpected(LinkFailure(mDriver.LastError(), false));
    GoOnline(mShared, mPrompts);
    if (mHost->IsOnline()) return Tell();
    if (mPrompts.Said().empty()) return std::unexpected(LinkFailure(mChannel->LastError(), false));
    Failure refusal = NotFitFailure(std::string(kDoing), mPrompts.Said(), {}, {});
    refusal.code = "refused";
    return std::unexpected(refusal);
  }

 private:
  Outcome Tell() {
    const auto version = mChannel->GetVersionInfo(mChannel->UnitID());
    const auto info = version ? mChannel->GetControllerInfo(mChannel->UnitID()) : std::nullopt;
    if (!info) return std::unexpected(LinkFailure(mChannel->LastError(), true));
    const ConsoleHost::Panel& panel = mHost->PanelSettings();
    Answer answer;
    answer.document = {{"model", mHost->Model()},
                       {"reported", version->model},
                       {"os", version->osVersion},
                       {"build", version->osBuild},
                       {"unit", mChannel->UnitID()},
                       {"link", mDriver.LinkDescription()},
                       {"project", AnsiToUtf8(info->projectName)},
                       {"panelData", panel.data},
                       {"panelInformation", nullptr},
                       {"caption", panel.caption}};
    if (panel.information) answer.document["panelInformation"] = *panel.information;
    answer.text = DocumentText(answer.document, kLines);
    return answer;
  }

  SharedState mShared;
  CommDriver& mDriver;
  NotedPrompts mPrompts;
  std::optional<ConsoleHost> mHost;
  std::shared_ptr<Channel> mChannel;
};

}  // namespace

const char* VerbOnline::Examples() const {
  return "  kvtele --link sim:K220-22-R1 online             a simulated controller\n"
         "  kvtele --session Plant2 online                  the controller of a session\n"
         "  kvtele --link tcp:192.168.1.20 --json online    for a script: exit 4 when it is refused\n";
}

Outcome VerbOnline::Run(Environment& environment, const CommonOptions& common) {
  const auto driver = MakeDriver(environment, common);
  if (!driver) return std::unexpected(driver.error());
  const Outcome outcome = OnlineRun(environment, common, **driver).Run();
  (*driver)->CloseDriver();
  return outcome;
}

}  // namespace kv::cli
