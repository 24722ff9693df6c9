#include "apps/kvtele/CommonOptions.h"

#include <CLI/Option.hpp>
#include <algorithm>

#include "KvCmDrv1/LinkSettings.h"
#include "base/Numbers.h"
#include "base/PathText.h"
#include "host/LogIn.h"
#include "models/ModelCatalogue.h"
#include "secret/SecretFile.h"

namespace kv::cli {

namespace {

// Behind the first try.
constexpr NumberRange kRetries{kTries.lowest - 1, kTries.highest - 1};

// The checks of the parser return what is wrong, or nothing.
std::string CheckModel(const std::string& model) {
  const auto models = SelectableModels();
  if (std::ranges::find(models, model) != models.end()) return {};
  std::string text = "there is no model \"" + model + "\"; the models are";
  std::string separator = " ";
  for (const std::string_view each : models) {
    text.append(separator).append(each);
    separator = ", ";
  }
  return text;
}

std::string PasswordFault(std::string_view password) {
  const auto isPlain = [](char c) { return c >= 0x20 && c <= 0x7E; };
  if (!password.empty() && password.size() <= kLongestPassword && std::ranges::all_of(password, isPlain)) return {};
  return "a password has 1 to " + std::to_string(kLongestPassword) + " plain characters";
}

auto Within(NumberRange range) {
  return [range](const std::string& text) -> std::string {
    const auto number = ParseInteger(text);
    if (number && range.Holds(*number)) return {};
    return "\"" + text + "\" is no number from " + range.Text();
  };
}

void DeclareLinkOptions(CLI::App& app, CommonOptions& options) {
  app.add_option("--link", options.link,
                 "The way to the controller: sim:MODEL, tcp:HOST[:PORT], serial:PORT[,BAUD[,8N1]],\n"
                 "modem:PORT,NUMBER[,BAUD[,INIT]] or listen:PORT. Default: the session's own link")
      ->type_name("LINK");
  app.add_option("--unit", options.unit, "Unit id of the controller, " + kUnitIds.Text())
      ->type_name("N")
      ->check(Within(kUnitIds));
  app.add_option("--serial-number", options.serialNumber,
                 "The serial number that the controller must have; another one is refused before anything\n"
                 "is read. Default: the session's, or whoever answers")
      ->type_name("N")
      ->check(Within(kSerialNumbers));
  app.add_option("--redials", options.redials,
                 "How often in a row watch dials a modem's lost call again, " + kRedials.Text() + ". Default: 3")
      ->type_name("N")
      ->check(Within(kRedials));
  app.add_option("--timeout", options.timeOut, "Longest time for a reply, " + kTimeOuts.Text() + " ms")
      ->type_name("MS")
      ->check(Within(kTimeOuts));
  app.add_option("--retries", options.retries, "How often an unanswered request is sent again, " + kRetries.Text())
      ->type_name("N")
      ->check(Within(kRetries));
}

void DeclareUserOptions(CLI::App& app, CommonOptions& options) {
  app.add_option("--user", options.user,
                 "Who works with it, for the records of what was changed. Default: the user of this computer")
      ->type_name("NAME")
      ->check([](const std::string& name) { return UserNameFault(name); });
  CLI::Option* password =
      app.add_option_function<std::string>(
             "--password", [&options](const std::string& text) { options.password = Secret(text); },
             "The controller's password. Others who use this computer can see it in the list of processes: for\n"
             "tests. Otherwise use KVTELE_PASSWORD in the environment, --password-file, or wait to be asked")
          ->type_name("PW")
          ->check(PasswordFault);
  app.add_option("--password-file", options.passwordFile,
                 "File with the controller's password in its first line; refused unless only its owner can read it")
      ->type_name("FILE")
      ->excludes(password);
}

}  // namespace

OrFailure<void> FindPassword(CommonOptions& options, const Secret& fromEnvironment) {
  if (!options.password.IsEmpty()) return {};
  if (!options.passwordFile.empty()) {
    auto read = ReadSecretFile(PathFromUtf8(options.passwordFile));
    if (!read) {
      return std::unexpected(
          Failure{ExitCode::BadFile, "badFile", "reading the password", read.error().happened, {}, read.error().cure});
    }
    options.password = *std::move(read);
    options.passwordFrom = "--password-file";
  } else {
    options.password = fromEnvironment;
    options.passwordFrom = "KVTELE_PASSWORD";
  }
  const std::string fault = options.password.IsEmpty() ? "" : PasswordFault(options.password.View());
  if (fault.empty()) return {};
  return std::unexpected(UsageFailure(options.passwordFrom + ": " + fault));
}

OrFailure<HomeReason> FindFolders(CommonOptions& options, const ProgramPlaces& places) {
  const auto found = FindProgramFolders(places, PathFromUtf8(options.home));
  if (!found) {
    const FoldersFault& fault = found.error();
    return std::unexpected(Failure{ExitCode::Failed, "failed", "looking for the program's folders", fault.happened,
                                   fault.cause, fault.cure});
  }
  options.paths = found->paths;
  return found->reason;
}

void DeclareCommonOptions(CLI::App& app, CommonOptions& options) {
  app.add_option("--home", options.home, "Folder that holds Sessions. Default: where \"kvtele paths\" says")
      ->type_name("DIR");
  app.add_option("--session", options.session, "Session whose link settings are used. Default: Default")
      ->type_name("NAME")
      ->each([&options](const std::string&) { options.isSessionNamed = true; });
  DeclareLinkOptions(app, options);
  DeclareUserOptions(app, options);
  app.add_option("--model", options.model, "The model that the controller must be. Default: what it says itself")
      ->type_name("MODEL")
      ->check(CheckModel);
  app.add_flag("--json", options.json, "Print one JSON document, also for errors");
  app.add_option("--trace", options.trace, "Write every frame of the line to a file")->type_name("FILE");
  app.add_flag("--yes", options.yes, "Answer questions with yes");
  app.add_option("--reason", options.reason, "Why: recorded with what the command changes")->type_name("TEXT");
  app.add_flag("--unrecorded", options.unrecorded,
               "Change the controller also where that cannot be recorded in the session's journal");
}

}  // namespace kv::cli
