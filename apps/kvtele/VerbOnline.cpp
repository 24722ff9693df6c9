#include "apps/kvtele/VerbOnline.h"

#include <array>

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

// What the window's programs share, for one run on the terminal.
SharedState SharedFor(const Environment& environment, const CommonOptions& common, Connection& connection) {
  SharedState shared(PathsOf(environment, common));
  shared.CurrentSession = common.session;
  shared.ComDriver = &connection.Driver();
  return shared;
}

Answer MakeAnswer(Connection& connection, const Channel::ControllerInfo& info, const ConsoleHost& host) {
  const ConsoleHost::Panel& panel = host.PanelSettings();
  Answer answer;
  answer.document = {{"model", host.Model()},
                     {"reported", connection.Version().model},
                     {"os", connection.Version().osVersion},
                     {"build", connection.Version().osBuild},
                     {"unit", connection.Unit()},
                     {"link", connection.Description()},
                     {"project", AnsiToUtf8(info.projectName)},
                     {"panelData", panel.data},
                     {"panelInformation", nullptr},
                     {"caption", panel.caption}};
  if (panel.information) answer.document["panelInformation"] = *panel.information;
  answer.text = DocumentText(answer.document, kLines);
  return answer;
}

Failure Refusal(const std::string& text) {
  Failure failure = NotFitFailure("going on line", text, {}, {});
  failure.code = "refused";
  return failure;
}

}  // namespace

const char* VerbOnline::Examples() const {
  return "  kvtele --link sim:K220-22-R1 online             a simulated controller\n"
         "  kvtele --session Default online                 the controller of a session\n"
         "  kvtele --link tcp:192.168.1.20 --json online    for a script: exit 4 when it is refused\n";
}

Outcome VerbOnline::Run(Environment& environment, const CommonOptions& common) {
  const auto connection = Connection::Open(environment, common);
  if (!connection) return std::unexpected(connection.error());
  Connection& controller = **connection;
  SharedState shared = SharedFor(environment, common, controller);
  const std::string model = common.model.empty() ? LastModel(shared) : common.model;
  ConsoleHost host(environment.err, model, Utf8FromPath(shared.paths.Home()));
  shared.Remote = &host;
  NotedPrompts prompts;
  GoOnline(shared, prompts);
  if (!prompts.Said().empty()) return std::unexpected(Refusal(prompts.Said()));
  if (!host.IsOnline()) return std::unexpected(controller.LastFailure());
  const auto info = controller.Link().GetControllerInfo(controller.Unit());
  if (!info) return std::unexpected(controller.LastFailure());
  return MakeAnswer(controller, *info, host);
}

}  // namespace kv::cli
