#include "apps/kvtele/Completions.h"
#include "apps/kvtele/ShellText.h"

namespace kv::cli {

namespace {

constexpr const char* kSessions = "(kvtele sessions list 2>/dev/null)";  // name, TAB, what is told of it

// In quotes of fish, in which backslashes and quotes are escaped.
std::string FishQuoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "'";
}

// Words of a list are cut at blanks, unless they are quoted in it.
std::string List(const std::vector<std::string>& values) {
  std::string list;
  for (const std::string& value : values) list += (list.empty() ? "" : " ") + FishQuoted(value);
  return FishQuoted(list);
}

std::string ValueOf(const OptionFacts& option) {
  switch (OfferFor(option)) {
    case Offer::Files:
    case Offer::Folders:
      return " -r -F";
    case Offer::Sessions:
      return " -x -a " + FishQuoted(kSessions);
    case Offer::Choices:
      return " -x -a " + List(ValuesOf(option));
    case Offer::Nothing:
      break;
  }
  return " -x";
}

std::string OptionLine(const std::string& begin, const OptionFacts& option) {
  return begin + " -l " + option.name.substr(2) + (option.value.empty() ? "" : ValueOf(option)) + " -d " +
         FishQuoted(option.text) + "\n";
}

std::string ArgumentLine(const std::string& begin, const OptionFacts& argument) {
  const Offer offer = OfferFor(argument);
  if (offer == Offer::Files || offer == Offer::Folders) return begin + " -F\n";
  if (offer == Offer::Choices)
    return begin + " -a " + List(ValuesOf(argument)) + " -d " + FishQuoted(argument.text) + "\n";
  return {};
}

}  // namespace

std::string FishCompletion(const ProgramFacts& facts) {
  const std::string program = "complete -c kvtele";
  std::string text = kMadeByBuild + program + " -f\n";
  for (const OptionFacts& option : facts.program.options) text += OptionLine(program, option);
  for (const VerbFacts& verb : facts.verbs) {
    text += program + " -n __fish_use_subcommand -a " + verb.name + " -d " + FishQuoted(verb.summary) + "\n";
    const std::string inVerb = program + " -n '__fish_seen_subcommand_from " + verb.name + "'";
    for (const OptionFacts& option : verb.options) text += OptionLine(inVerb, option);
    for (const OptionFacts& argument : verb.arguments) text += ArgumentLine(inVerb, argument);
  }
  return text;
}

}  // namespace kv::cli
