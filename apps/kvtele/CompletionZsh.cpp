#include <algorithm>

#include "apps/kvtele/Completions.h"
#include "apps/kvtele/ShellText.h"

namespace kv::cli {

namespace {

// Brackets and colons end the parts of what _arguments reads.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

// What completes a value: a function of zsh or of this script. "_kvtele_LINK"
std::string Completer(const OptionFacts& option) {
  switch (OfferFor(option)) {
    case Offer::Nothing:
      return " ";
    case Offer::Files:
      return "_files";
    case Offer::Folders:
      return "_files -/";
    case Offer::Sessions:
      return "_kvtele_sessions";
    case Offer::Choices:
      break;
  }
  return "{compadd -- " + QuotedWords(ValuesOf(option)) + "}";
}

// In one pair of quotes, with those of the action doubled; its colons are its own.
std::string Action(const OptionFacts& option) {
  std::string action = Completer(option);
  for (std::size_t at = 0; (at = action.find(':', at)) != std::string::npos; at += 2) action.insert(at, "\\");
  return action;
}

std::string OptionSpec(const OptionFacts& option) {
  const std::string described = option.name + "[" + Escaped(option.text) + "]";
  if (option.value.empty()) return Quoted(described);
  return Quoted(described + ":" + Escaped(option.value) + ":" + Action(option));
}

std::string ArgumentSpec(const OptionFacts& argument, std::size_t number, bool isLast) {
  const std::string place = isLast ? "*" : std::to_string(number);
  return Quoted(place + ":" + Escaped(argument.name) + ":" + Action(argument));
}

std::string Specs(const VerbFacts& verb) {
  std::string specs;
  for (const OptionFacts& option : verb.options) specs += " \\\n        " + OptionSpec(option);
  for (std::size_t i = 0; i < verb.arguments.size(); ++i) {
    specs += " \\\n        " + ArgumentSpec(verb.arguments[i], i + 1, i + 1 == verb.arguments.size());
  }
  return specs;
}

}  // namespace

std::string ZshCompletion(const ProgramFacts& facts) {
  std::string verbs;
  std::string cases;
  for (const VerbFacts& verb : facts.verbs) {
    verbs += "    " + Quoted(Escaped(verb.name) + ":" + verb.summary) + "\n";
    cases += "      " + verb.name + ") _arguments $common" + Specs(verb) + " ;;\n";
  }
  std::string common;
  for (const OptionFacts& option : facts.program.options) common += "    " + OptionSpec(option) + "\n";
  return "#compdef kvtele\n" + std::string(kMadeByBuild) +
         "\n_kvtele_sessions() {\n"
         "  local -a names\n"
         "  names=(${${(f)\"$(_call_program sessions kvtele sessions list)\"}%%$'\\t'*})\n"
         "  compadd -a names\n"
         "}\n"
         "_kvtele() {\n"
         "  local curcontext=$curcontext state line\n"
         "  local -a common verbs\n"
         "  common=(\n" +
         common + "  )\n  verbs=(\n" + verbs +
         "  )\n"
         "  _arguments -C $common '1:verb:->verb' '*::argument:->rest'\n"
         "  case $state in\n"
         "    verb) _describe verb verbs ;;\n"
         "    rest) case $words[1] in\n" +
         cases +
         "    esac ;;\n"
         "  esac\n"
         "}\n"
         "_kvtele \"$@\"\n";
}

}  // namespace kv::cli
