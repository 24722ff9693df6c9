#include <array>
#include <system_error>
#include <vector>

#include "KvTele2/cache/CacheDiff.h"
#include "KvTele2/cache/CacheImport.h"
#include "KvTele2/cache/CacheScreen.h"
#include "apps/kvtele/CacheActions.h"
#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/TerminalProgress.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "desktop/PacerWallClock.h"
#include "link/OsVersion.h"
#include "sessions/RecentCaches.h"

namespace kv::cli {

namespace fs = std::filesystem;

namespace {

using namespace cache;
using Json = nlohmann::ordered_json;

constexpr std::string_view kTitle = "Cache Import";

// The import's window on the terminal: one line of progress.
class TerminalImport final : public CacheImportWindow {
 public:
  explicit TerminalImport(Environment& environment) : mLine(environment) {}

  void Event_Step(CacheStep, CacheStepState state) override {
    if (state != CacheStepState::Running) mLine.Wipe();
  }
  void Event_Progress(const CacheProgress& progress) override {
    if (progress.total == 0) return;
    constexpr std::uint64_t kKibibyte = 1024;
    mLine.Show(std::string(ProgressText(progress.step)) + ": " + std::to_string(progress.done / kKibibyte) + " of " +
               std::to_string((progress.total + kKibibyte - 1) / kKibibyte) + " KiB" +
               (progress.left.empty() ? "" : ", " + progress.left));
  }

 private:
  TerminalLine mLine;
};

// Whose session this is about: a link that is named by itself is nobody's.
std::optional<SharedState> SessionOf(const CommonOptions& common) {
  if (!common.link.empty() && !common.isSessionNamed) return std::nullopt;
  SharedState shared(common.paths);
  shared.CurrentSession = common.session;
  std::error_code ignored;
  if (!fs::is_directory(shared.paths.Session(common.session), ignored)) return std::nullopt;
  return shared;
}

Failure ImportFailure(const CacheOutcome& outcome, const std::string& doing) {
  // clang-format off
  constexpr CauseRow<CacheCause> kRows[] = {
      {CacheCause::NotColour,       "notFit",          ExitCode::Refused},
      {CacheCause::OldOs,           "notFit",          ExitCode::Refused},
      {CacheCause::TooMuch,         "notFit",          ExitCode::Refused},
      {CacheCause::NothingWanted,   "usage",           ExitCode::Usage},
      {CacheCause::File,            "badFile",         ExitCode::BadFile},
      {CacheCause::OtherController, "otherController", ExitCode::LinkLost},
      {CacheCause::Changed,         "changed",         ExitCode::Failed},
  };
  // clang-format on
  if (outcome.end == CacheEnd::Stopped) return InterruptedFailure(doing);
  std::string happened = outcome.text;
  std::erase(happened, '\r');
  for (const std::string& more : {outcome.reason, outcome.kept}) happened += (more.empty() ? "" : "\n") + more;
  if (const auto* row = RowOf<CacheCause>(kRows, outcome.cause)) {
    return {row->exit, std::string(row->name), doing, happened, {}, {}};
  }
  const Failure link = LinkFailure(outcome.link, true);
  return {link.exit, link.code, doing, happened, {}, {}};
}

std::string ControllerText(const CacheOwner& owner) {
  return AnsiToUtf8(owner.version.model) + ", serial number " + std::to_string(owner.serialNumber);
}

// Two consents, for two things: the file, and the display that its user will not see for a while.
OrFailure<void> AskBefore(Environment& environment, const CommonOptions& common, const CacheImportPlan& plan,
                          const CacheOrder& order, const std::string& doing) {
  if (!plan.question.empty()) {
    const auto replaced = Confirm(environment, ConsentFlag{order.replace, "--replace"}, plan.question, doing, kTitle);
    if (!replaced) return replaced;
  }
  if (plan.BytesToRead() == 0) return {};
  return Confirm(environment, ConsentFlag{common.yes, "--yes"},
                 std::string(kSystemModeWarning) + "\r\n\r\nRead " + ReadingText(plan, plan.BytesToRead()) + ", from " +
                     ControllerText(plan.controller) + "?",
                 doing, kTitle);
}

VerbOutput MakeOutput(const CacheImport& import, const fs::path& file) {
  std::size_t read = 0;
  std::uint64_t bytes = 0;
  VerbOutput output;
  output.document = {{"file", Utf8FromPath(file)}, {"resources", Json::array()}};
  for (const CacheResult& one : import.Results()) {
    read += one.wasRead ? 1 : 0;
    bytes += one.wasRead ? one.entry.length : 0;
    output.document["resources"].push_back({{"kind", one.step == CacheStep::Font ? "font" : "image"},
                                            {"id", one.entry.id},
                                            {"name", AnsiToUtf8(one.entry.name)},
                                            {"bytes", one.entry.length},
                                            {"read", one.wasRead},
                                            {"fault", one.fault}});
  }
  const std::size_t kept = import.Results().size() - read;
  output.document["bytesRead"] = bytes;
  output.text = Utf8FromPath(file) + ": " + Counted(read, "font or image", "fonts and images") + " read (" +
                std::to_string(bytes) + " bytes), " + std::to_string(kept) + " kept as they were\n";
  return output;
}

void TellWhatToDoubt(Environment& environment, const CacheImport& import) {
  for (const std::string& warning : import.Warnings()) environment.err << "Warning: " << warning << "\n";
  for (const CacheResult& one : import.Results()) {
    if (one.fault.empty()) continue;
    environment.err << "Warning: " << ResourceName(one.step, one.entry)
                    << " is as in the controller, and cannot be drawn: " << one.fault << ".\n";
  }
}

}  // namespace

VerbResult ImportCache(Environment& environment, const CommonOptions& common, const fs::path& file,
                       const CacheOrder& order) {
  const std::string doing = "importing into " + Utf8FromPath(file);
  const auto session = SessionOf(common);
  CacheImportOrder import{.file = file,
                          .workingFile = {},
                          .emptyCache = common.paths.EmptyCache(),
                          .fonts = order.only != "images",
                          .images = order.only != "fonts",
                          .readsAll = order.readsAll};
  if (session) import.workingFile = session->paths.SessionFile(session->CurrentSession, "tmpfile.ktc");
  TerminalImport window(environment);
  CacheImport engine(import, environment.pacer, environment.clock, window);

  const auto controller = ConnectedController::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  const auto plan = engine.Prepare(&(*controller)->Link());
  if (!plan) return std::unexpected(ImportFailure(plan.error(), doing));
  if (const auto asked = AskBefore(environment, common, *plan, order, doing); !asked) {
    return std::unexpected(asked.error());
  }
  if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing));
  const CacheOutcome outcome = engine.Run((*controller)->Link());
  TellWhatToDoubt(environment, engine);
  if (outcome.end != CacheEnd::Done) return std::unexpected(ImportFailure(outcome, doing));
  environment.err << (plan->isNew ? outcome.text : engine.Name() + " was brought up to date from the PLC") << ".\n";
  if (session) {
    std::error_code ignored;
    if (const auto added = AddRecentCache(*session, Utf8FromPath(fs::absolute(file, ignored))); !added) {
      environment.err << "Warning: " << added.error() << "\n";
    }
  }
  return MakeOutput(engine, file);
}

OrFailure<std::optional<ChosenCache>> NamedCache(const std::string& named) {
  if (named.empty()) return std::nullopt;
  auto content = ReadCacheFile(PathFromUtf8(named));
  if (!content) return std::unexpected(CacheFailure(content.error(), "reading the cache file"));
  return ChosenCache{*std::move(content), named};
}

std::optional<ChosenCache> RecentCache(Environment& environment, const CommonOptions& common,
                                       const std::string& model) {
  const auto session = SessionOf(common);
  std::vector<std::string> recent = session ? ReadRecentCaches(*session) : std::vector<std::string>();
  if (recent.empty()) return std::nullopt;
  for (std::string& entry : recent) entry = CachePath(entry);
  CacheChoice choice = cache::ChooseCache(recent, model);
  if (choice.content) {
    for (const std::string& why : choice.passedOver) environment.err << why << "\n";
    return ChosenCache{*std::move(choice.content), recent[choice.index]};
  }
  environment.err << "The session's cache is not used. " << choice.content.error().Text() << ".\n";
  return std::nullopt;
}

}  // namespace kv::cli
