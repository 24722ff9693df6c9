#include <CLI/Option.hpp>
#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "KvTele2/HostState.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/ConsoleHost.h"
#include "apps/kvtele/Failure.h"
#include "apps/kvtele/NotedPrompts.h"
#include "apps/kvtele/Verb.h"
#include "apps/kvtele/VerbOutput.h"
#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "base/ProgramPaths.h"
#include "link/OsVersion.h"
#include "link/StateText.h"
#include "link/identification/GoOnline.h"
#include "sessions/SessionIni.h"

namespace kv::cli {

namespace {

namespace fs = std::filesystem;

// Goes through what On Line does in the window, up to where the panel would be shown, and tells the result. All of it
// works on a copy of the session, which stays as it is: a window may be using it.
class VerbOnline : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "online"; }
  [[nodiscard]] const char* Summary() const override { return "Tell whether Telepanel can go on line, and with what"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mProject;  // path of a pages file; empty: none
};

// Whose settings going on line reads or writes.
constexpr std::array<const char*, 2> kSettings{"KvTeleExe.ini", "KvTele2.ini"};
constexpr int kMostNames = 100;

// A folder of a name that nobody has: left-overs of a process of the same number are no reason to fail.
fs::path MakeFolder(std::error_code& error) {
  const fs::path parent = fs::temp_directory_path(error);
  for (int i = 0; !error && i < kMostNames; ++i) {
    const fs::path folder = parent / ("kvtele-" + std::to_string(ProcessNumber()) + "-" + std::to_string(i));
    if (fs::create_directory(folder, error)) return folder;
  }
  if (!error) error = std::make_error_code(std::errc::file_exists);
  return {};
}

Failure CannotCopy(const fs::path& what, const std::error_code& error) {
  return {ExitCode::Failed,
          "failed",
          "copying the settings of the session",
          Utf8FromPath(what) + ": " + SystemMessage(error),
          "there is no permission, or the disk is full",
          "make room and give this user the right to it; TMPDIR (on Windows TEMP) names the folder for the copy"};
}

// The settings of a session, copied to a folder of its own below the machine's folder for temporary files. What is done
// to the copy leaves the session as it is. The copy is deleted with this object.
class SessionCopy {
 public:
  // A session that is not there, or has no settings, gives an empty one.
  [[nodiscard]] static OrFailure<std::unique_ptr<SessionCopy>> Make(const ProgramPaths& paths,
                                                                    const std::string& session);
  ~SessionCopy();
  SessionCopy(const SessionCopy&) = delete;
  SessionCopy& operator=(const SessionCopy&) = delete;

  // Of the program folder in which the session lies as it did in the other.
  [[nodiscard]] const ProgramPaths& Paths() const { return mPaths; }

 private:
  explicit SessionCopy(const std::filesystem::path& home) : mPaths(home) {}

  ProgramPaths mPaths;
};

OrFailure<std::unique_ptr<SessionCopy>> SessionCopy::Make(const ProgramPaths& paths, const std::string& session) {
  std::error_code error;
  const fs::path home = MakeFolder(error);
  if (error) return std::unexpected(CannotCopy("the folder for temporary files", error));
  std::unique_ptr<SessionCopy> copy(new SessionCopy(home));
  fs::create_directories(copy->mPaths.Session(session), error);
  if (error) return std::unexpected(CannotCopy(home, error));
  for (const char* name : kSettings) {
    const fs::path from = paths.SessionFile(session, name);
    std::error_code ignored;
    if (!fs::exists(from, ignored)) continue;
    const fs::path to = copy->mPaths.SessionFile(session, name);
    fs::copy_file(from, to, error);
    if (error) return std::unexpected(CannotCopy(from, error));
    fs::permissions(to, fs::perms::owner_write, fs::perm_options::add, ignored);
  }
  return copy;
}

SessionCopy::~SessionCopy() {
  std::error_code ignored;
  std::filesystem::remove_all(mPaths.Home(), ignored);
}

// clang-format off
constexpr std::array kLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"reported as    ", "reported"},
    DocumentLine{"hardware code  ", "hardwareCode"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"unit           ", "unit"},
    DocumentLine{"link           ", "link"},
    DocumentLine{"serial number  ", "serialNumber"},
    DocumentLine{"state          ", "state"},
    DocumentLine{"project        ", "project"},
    DocumentLine{"panel data     ", "panelData"},
    DocumentLine{"panel byte     ", "panelInformation"},
};
// clang-format on

// What was found out, and whether a project was compared.
struct Found {
  const VersionInfo& version;
  const Channel::ControllerInfo& info;
  bool isProjectCompared;
};

VerbOutput MakeOutput(ConnectedController& controller, const Found& found, const ConsoleHost& host) {
  const ConsoleHost::Panel& panel = host.PanelSettings();
  VerbOutput output;
  output.document = {{"model", host.Model()},
                     {"reported", AnsiToUtf8(found.version.model)},
                     {"hardwareCode", found.version.hardwareCode},
                     {"os", OsVersionText(found.version)},
                     {"build", OsBuildText(found.version)},
                     {"unit", controller.Unit()},
                     {"link", controller.Description()},
                     {"serialNumber", found.info.serialNumber},
                     {"state", StateText(found.info.state)},
                     {"project", AnsiToUtf8(found.info.projectName)},
                     {"projectCompared", found.isProjectCompared},
                     {"panelData", panel.data},
                     {"panelInformation", nullptr},
                     {"caption", panel.caption}};
  if (panel.information) output.document["panelInformation"] = *panel.information;
  output.text = DocumentText(output.document, kLines);
  return output;
}

Failure Refusal(const std::string& text) {
  Failure failure = NotFitFailure("going on line", text, {}, {});
  failure.code = "refused";
  return failure;
}

OrFailure<std::optional<PagesFile>> ReadProject(const std::string& path) {
  if (path.empty()) return std::nullopt;
  const auto pages = ReadPagesFile(PathFromUtf8(path));
  if (pages) return *pages;
  return std::unexpected(Failure{ExitCode::BadFile,
                                 "badFile",
                                 "reading the Telepanel file",
                                 pages.error().Text(),
                                 {},
                                 "name a file that the window has saved, or make it anew there"});
}

// Going on line leaves the model alone that the host has for some controllers of the compact family.
bool IsMisfit(const VersionInfo& version, int unit, const std::string& hostModel) {
  HostState state;
  state.model = hostModel;
  state.controller = ControllerFactsOf(version, unit);
  return !MisfitText(state).empty();
}

void SayWhatToDoubt(Environment& environment, const ConnectedController& controller, const ConsoleHost& host,
                    bool isProjectCompared) {
  if (IsMisfit(controller.Version(), controller.Unit(), host.Model())) {
    environment.err << "The controller is a " << AnsiToUtf8(controller.Version().model)
                    << ", but it was served as the session's model, " << host.Model()
                    << ": name its own with --model.\n";
  }
  if (!isProjectCompared) environment.err << "No project was compared: name a Telepanel file with --project.\n";
}

const char* VerbOnline::Examples() const {
  return "  kvtele --link sim:K220-22-R1 online             a simulated controller\n"
         "  kvtele --session Default online                 the controller of a session\n"
         "  kvtele online --project mill.kta                refused when it holds another project\n"
         "  kvtele --link tcp:192.168.1.20 --json online    for a script: exit 4 when it is refused\n";
}

void VerbOnline::Declare(CLI::App& app) {
  app.add_option("--project", mProject, "Telepanel file whose project the controller must hold. Default: not compared")
      ->type_name("FILE.kta");
}

VerbResult VerbOnline::Run(Environment& environment, const CommonOptions& common) {
  const auto pages = ReadProject(mProject);
  if (!pages) return std::unexpected(pages.error());
  const auto connected = ConnectedController::Open(environment, common);
  if (!connected) return std::unexpected(connected.error());
  const ProgramPaths& paths = common.paths;
  const auto copy = SessionCopy::Make(paths, common.session);
  if (!copy) return std::unexpected(copy.error());

  SharedState shared((*copy)->Paths());
  shared.CurrentSession = common.session;
  shared.ComDriver = &(*connected)->Driver();
  const std::string model = common.model.empty() ? LastModel(shared) : common.model;
  ConsoleHost host(environment.err, model, Utf8FromPath(paths.Shipped()), *pages);
  shared.Remote = &host;
  NotedPrompts prompts;
  GoOnline(shared, prompts);
  if (!host.Refusal().empty()) return std::unexpected(Refusal(host.Refusal()));
  if (!host.IsOnline()) return std::unexpected((*connected)->LastFailure());
  const auto info = (*connected)->AskInfo();
  if (!info) return std::unexpected(info.error());
  SayWhatToDoubt(environment, **connected, host, pages->has_value());
  return MakeOutput(**connected, {(*connected)->Version(), *info, pages->has_value()}, host);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbOnline() {
  return std::make_unique<VerbOnline>();
}

}  // namespace kv::cli
