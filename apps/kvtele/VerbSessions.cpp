#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <string>

#include "apps/kvtele/ConsentFlag.h"
#include "apps/kvtele/NotedPrompts.h"
#include "apps/kvtele/Verb.h"
#include "sessions/SessionManager.h"

namespace kv::cli {

namespace {

// Lists, copies and deletes sessions, as the session window does.
class VerbSessions : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "sessions"; }
  [[nodiscard]] const char* Summary() const override { return "List, create or delete sessions"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  std::string mAction;
  std::string mName;
};

Failure SessionFailure(std::string doing, std::string happened, std::string cure) {
  return {ExitCode::Failed, "failed", std::move(doing), std::move(happened), {}, std::move(cure)};
}

// As the session window shows them.
VerbResult List(const SessionManager& sessions) {
  if (const std::string fault = sessions.ListFault(); !fault.empty()) {
    return std::unexpected(SessionFailure("listing the sessions", fault, {}));
  }
  VerbOutput output;
  output.document["sessions"] = nlohmann::json::array();
  for (const std::string& name : sessions.List()) {
    const SessionFacts facts = sessions.Describe(name);
    output.document["sessions"].push_back({{"name", name}, {"model", facts.model}, {"link", facts.link}});
    output.text += name + "\t" + facts.model + "\t" + facts.link + "\n";
  }
  return output;
}

bool IsListed(const SessionManager& sessions, const std::string& name) {
  const auto names = sessions.List();
  return std::ranges::find(names, name) != names.end();
}

Failure NoSession(const std::string& name) {
  return UsageFailure("there is no session \"" + name + "\"", "see kvtele sessions list");
}

// Copies the session that --session names. The copy does not become the current session: a running window decides
// in which session it works, and marks it.
VerbResult Create(const SessionManager& sessions, const std::string& source, const std::string& name) {
  if (const std::string fault = SessionNameFault(name); !fault.empty()) return std::unexpected(UsageFailure(fault));
  if (!IsListed(sessions, source)) return std::unexpected(NoSession(source));
  const auto copied = sessions.CopyCurrent(name);
  if (!copied) return std::unexpected(SessionFailure("creating session \"" + name + "\"", copied.error(), {}));
  return VerbOutput{"", {{"created", name}}};
}

VerbResult Delete(Environment& environment, SessionManager& sessions, const NotedPrompts& prompts,
                  const std::string& name) {
  if (!IsListed(sessions, name)) return std::unexpected(NoSession(name));
  const auto deletion = sessions.DeleteOnConsent(name);
  if (deletion == SessionManager::Deletion::Done) return VerbOutput{"", {{"deleted", name}}};
  const std::string doing = "deleting session \"" + name + "\"";
  if (deletion == SessionManager::Deletion::Declined) {
    if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing + " (it was not deleted)"));
    return std::unexpected(Failure{ExitCode::Failed, "declined", doing, "it was not deleted",
                                   "the question was not answered with yes",
                                   "give --yes to delete without a question"});
  }
  if (!prompts.Said().empty()) return std::unexpected(SessionFailure(doing, prompts.Said(), {}));
  const SessionHold hold = sessions.HoldOf(name);
  if (hold.happened.empty()) {
    return std::unexpected(SessionFailure(doing, "its folder could not be removed", "close what has its files open"));
  }
  return std::unexpected(Failure{ExitCode::Failed, "failed", doing, hold.happened, hold.cause, hold.cure});
}

const char* VerbSessions::Examples() const {
  return "  kvtele sessions list                           name, model and link\n"
         "  kvtele sessions create Plant2                  a copy of session Default\n"
         "  kvtele --session Plant2 sessions create Plant3 a copy of Plant2\n"
         "  kvtele sessions delete Plant3                  after asking; --yes does not\n";
}

void VerbSessions::Declare(CLI::App& app) {
  app.add_option("ACTION", mAction, "list, create or delete")
      ->required()
      ->check(CLI::IsMember({"list", "create", "delete"}));
  app.add_option("NAME", mName, "The session to create or delete");
}

VerbResult VerbSessions::Run(Environment& environment, const CommonOptions& common) {
  if (mName.empty() != (mAction == "list")) {
    return std::unexpected(
        UsageFailure(mAction == "list" ? "list takes no name" : mAction + " needs the session's name",
                     "see kvtele sessions --help"));
  }
  SharedState shared(common.paths);
  shared.CurrentSession = common.session;
  ConsolePrompts asked = PromptsFor(environment, common);
  NotedPrompts prompts(&asked);
  SessionManager sessions(shared, prompts);
  if (mAction == "create") return Create(sessions, common.session, mName);
  const auto driver = environment.makeDriver({.link = {}, .sessionFolder = {}, .traceFile = {}});
  if (!driver) return std::unexpected(driver.error());
  shared.ComDriver = driver->get();  // describes links; none is opened
  return mAction == "delete" ? Delete(environment, sessions, prompts, mName) : List(sessions);
}

}  // namespace

std::unique_ptr<Verb> MakeVerbSessions() {
  return std::make_unique<VerbSessions>();
}

}  // namespace kv::cli
