#include "apps/kvtele/KvTele.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>

#include "apps/kvtele/ProgramFacts.h"
#include "apps/kvtele/Verb.h"
#include "base/Hex.h"
#include "base/ProgramVersion.h"

namespace kv::cli {

namespace {

// All work as they stand, in this order, on a machine without any controller; the last line tells how to name a real
// one.
constexpr const char* kProgramExamples =
    "  kvtele --link sim:K220-22-R1 identify                who is there? (a simulated controller)\n"
    "  kvtele --link sim:K220-22-R1 read MI 0 9             ten integers, one a line\n"
    "  kvtele --link sim:K220-22-R1 write MI 0 4660 22136   two integers, read back and compared\n"
    "  kvtele sessions create Plant2                        a copy of session Default\n"
    "  kvtele --session Plant2 read \"TIMER PRESET\" 0        with the link settings of a session\n"
    "  kvtele ports                                         the serial lines of this machine\n"
    "A controller of your own: --link tcp:HOST, --link serial:PORT or --link modem:PORT,NUMBER.\n";

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 failed, 2 wrong usage, 3 no connection, 4 refused by or not fit for the\n"
    "controller, 5 differs, 6 bad file, 7 connection lost midway, 130 interrupted.\n"
    "Data goes to stdout, messages and progress to stderr.";

// Help begins with what most readers came for.
void SetHelp(CLI::App& app, const char* examples) {
  app.formatter_fn([examples](const CLI::App* each, std::string name, CLI::AppFormatMode mode) {
    CLI::Formatter plain;
    plain.column_width(26);
    plain.label("SUBCOMMAND", "VERB");
    return "Examples:\n" + std::string(examples) + "\n" + plain.make_help(each, std::move(name), mode);
  });
}

// The parsed command line: the chosen verb, or what there is to say instead of running one.
struct Parsed {
  Verb* verb = nullptr;
  std::string help;
};

class CommandLine {
 public:
  CommandLine() {
    mApp.set_version_flag("--version", "kvtele " + std::string(ProgramVersion()));
    mApp.allow_windows_style_options(false);  // "/..." is a path
    mApp.require_subcommand(1);
    mApp.footer(kExitCodes);
    SetHelp(mApp, kProgramExamples);
    DeclareCommonOptions(mApp, mCommon);
    for (const auto& makeVerb : kVerbMakers) {
      Verb& verb = *mVerbs.emplace_back(makeVerb());
      CLI::App* sub = mApp.add_subcommand(verb.Name(), verb.Summary())->fallthrough()->group("Verbs");
      verb.Declare(*sub);
      SetHelp(*sub, verb.Examples());
    }
  }

  [[nodiscard]] CommonOptions& Common() { return mCommon; }

  [[nodiscard]] ProgramFacts Describe() const {
    ProgramFacts facts{DescribeVerb(mApp, kProgramExamples), {}, kExitCodes};
    for (const auto& verb : mVerbs) {
      facts.verbs.push_back(DescribeVerb(*mApp.get_subcommand(verb->Name()), verb->Examples()));
    }
    return facts;
  }

  [[nodiscard]] OrFailure<Parsed> Parse(const std::vector<std::string>& arguments) {
    try {
      mApp.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
      return Parsed{nullptr, mApp.help()};
    } catch (const CLI::CallForVersion& version) {
      return Parsed{nullptr, std::string(version.what()) + "\n"};
    } catch (const CLI::Error& error) {
      return std::unexpected(mApp.get_subcommands().empty() && dynamic_cast<const CLI::RequiredError*>(&error)
                                 ? NoVerbFailure()
                                 : UsageFailure(error.what(), "see kvtele --help, or kvtele VERB --help"));
    }
    const auto chosen =
        std::ranges::find_if(mVerbs, [&](const auto& verb) { return mApp.got_subcommand(verb->Name()); });
    return Parsed{chosen->get(), {}};
  }

 private:
  [[nodiscard]] Failure NoVerbFailure() const {
    std::string verbs;
    for (const auto& verb : mVerbs) verbs += (verbs.empty() ? "" : ", ") + std::string(verb->Name());
    const std::vector<std::string> rest = mApp.remaining();
    return UsageFailure(rest.empty() ? "no verb is given" : "there is no verb \"" + rest.front() + "\"",
                        "use one of " + verbs + "; see kvtele --help");
  }

  CommonOptions mCommon;
  std::vector<std::unique_ptr<Verb>> mVerbs;
  CLI::App mApp{"Reads and writes Korvantis controllers from the command line.", "kvtele"};
};

// Asked for where the command line itself may be what could not be understood.
bool WantsJson(const std::vector<std::string>& arguments) {
  const auto end = std::ranges::find(arguments, "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

// JSON writes the control characters below 32 as numbers; those from 127 to 159 are written so too, which says the
// same.
std::string WithoutControls(const std::string& json) {
  std::string text;
  for (std::size_t i = 0; i < json.size(); ++i) {
    const auto next = static_cast<unsigned char>(i + 1 < json.size() ? json[i + 1] : '\0');
    const bool isPair = json[i] == '\xC2' && next >= 0x80 && next < 0xA0;
    if (isPair || json[i] == '\x7F') {
      text += "\\u00" + ToHex(isPair ? next : 0x7FU, 2);
      i += isPair ? 1 : 0;
    } else {
      text += json[i];
    }
  }
  return text;
}

std::string JsonText(const nlohmann::ordered_json& document) {
  if (document.is_null()) return {};  // the command has printed everything by itself
  // Texts come from controllers and file names; what is not UTF-8 in them must not cost the user the document.
  return WithoutControls(document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)) + "\n";
}

std::string JsonText(const Failure& failure) {
  return JsonText({{"error",
                    {{"code", failure.code},
                     {"exit", static_cast<int>(failure.exit)},
                     {"doing", failure.doing},
                     {"happened", failure.happened},
                     {"cause", failure.cause},
                     {"cure", failure.cure}}}});
}

// Writes the result in one piece. That its reader has gone away (as "| head" does) is not told; a full disk is.
bool WriteOut(const std::string& text, Environment& environment) {
  errno = 0;
  environment.out << text << std::flush;
  if (environment.out) return true;
  if (errno != EPIPE) environment.err << "The result could not be written to the output: is the disk full?\n";
  return false;
}

ExitCode Report(const VerbResult& result, bool json, Environment& environment) {
  if (result) {
    const std::string text = json ? JsonText(result->document) : result->text;
    return WriteOut(text, environment) ? result->exit : ExitCode::Failed;
  }
  environment.err << result.error().Text() << std::flush;
  if (json) (void)WriteOut(JsonText(result.error()), environment);
  return result.error().exit;
}

}  // namespace

ProgramFacts DescribeProgram() {
  return CommandLine().Describe();
}

ExitCode RunKvTele(const std::vector<std::string>& arguments, Environment& environment) {
  CommandLine line;
  const auto parsed = line.Parse(arguments);
  if (!parsed) return Report(std::unexpected(parsed.error()), WantsJson(arguments), environment);
  if (!parsed->verb) return WriteOut(parsed->help, environment) ? ExitCode::Done : ExitCode::Failed;
  if (const auto found = FindPassword(line.Common(), environment.password); !found) {
    return Report(std::unexpected(found.error()), line.Common().json, environment);
  }
  if (parsed->verb->NeedsFolders()) {
    if (const auto found = FindFolders(line.Common(), environment.places); !found) {
      return Report(std::unexpected(found.error()), line.Common().json, environment);
    }
  }
  return Report(parsed->verb->Run(environment, line.Common()), line.Common().json, environment);
}

}  // namespace kv::cli
