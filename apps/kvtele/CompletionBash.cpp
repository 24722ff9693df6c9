#include "apps/kvtele/Completions.h"
#include "apps/kvtele/ShellText.h"

namespace kv::cli {

namespace {

// What the script does whatever the program's options are.
constexpr const char* kBegin = R"sh(
# The replies to the word under the cursor, whether it is typed in capitals or not. The shell cuts words at colons, so
# what stands before the last one goes.
_kvtele_reply() { # CANDIDATE...
  local candidate before=${current%"${current##*:}"}
  [[ $COMP_WORDBREAKS == *:* ]] || before=
  for candidate; do
    [[ ${candidate,,} == "${current,,}"* ]] && COMPREPLY+=("$(printf '%q' "${candidate#"$before"}")")
  done
}
_kvtele_files() { # -f or -d
  local IFS=$'\n'
  compopt -o filenames 2>/dev/null
  COMPREPLY+=($(compgen "$1" -- "$current"))
}
_kvtele_sessions() {
  local name
  while IFS=$'\t' read -r name _; do _kvtele_reply "$name"; done < <("$program" "${home[@]}" sessions list 2>/dev/null)
}
)sh";

constexpr const char* kEnd = R"sh(
_kvtele() {
  local program=$1 line=${COMP_LINE:0:COMP_POINT} verb='' value='' argument=0 current word i
  local -a words home=()
  IFS=$' \t' read -ra words <<<"$line"
  [[ $line == *[[:blank:]] ]] && words+=('')
  current=${words[${#words[@]} - 1]}
  for ((i = 1; i < ${#words[@]} - 1; i++)); do
    word=${words[i]}
    if [[ $value ]]; then
      [[ $value == --home ]] && home=(--home "$word")
      value=''
    elif [[ $word == -* ]]; then
      _kvtele_takes_value "$verb:$word" && value=$word
    elif [[ $verb ]]; then
      argument=$((argument + 1))
    else
      verb=$word
    fi
  done
  COMPREPLY=()
  if [[ ! $value && $current == --*=* ]]; then
    value=${current%%=*}
    current=${current#*=}
  fi
  if [[ $value ]]; then
    _kvtele_offer "$verb:$value"
  elif [[ $current == -* ]]; then
    _kvtele_options "$verb"
  elif [[ $verb ]]; then
    _kvtele_offer "$verb:$argument"
  else
    _kvtele_verbs
  fi
}
complete -F _kvtele kvtele
)sh";

// The row of `case` that offers what may stand there; empty where nothing is offered.
std::string OfferRow(const std::string& pattern, const OptionFacts& option) {
  std::string does;
  switch (OfferFor(option)) {
    case Offer::Nothing:
      return {};
    case Offer::Choices:
      does = "_kvtele_reply " + QuotedWords(ValuesOf(option));
      break;
    case Offer::Files:
      does = "_kvtele_files -f";
      break;
    case Offer::Folders:
      does = "_kvtele_files -d";
      break;
    case Offer::Sessions:
      does = "_kvtele_sessions";
      break;
  }
  return "    " + pattern + ") " + does + " ;;\n";
}

std::string OptionRows(const VerbFacts& verb, const std::string& prefix) {
  std::string rows;
  for (const OptionFacts& option : verb.options) rows += OfferRow(prefix + option.name, option);
  return rows;
}

// The last argument may come more than once.
std::string ArgumentRows(const VerbFacts& verb) {
  std::string rows;
  for (std::size_t i = 0; i < verb.arguments.size(); ++i) {
    const bool isLast = i + 1 == verb.arguments.size();
    rows += OfferRow(verb.name + ":" + (isLast ? "[0-9]*" : std::to_string(i)), verb.arguments[i]);
  }
  return rows;
}

std::string ValuePatterns(const VerbFacts& verb, const std::string& prefix) {
  std::string patterns;
  for (const OptionFacts& option : verb.options) {
    if (!option.value.empty()) patterns += (patterns.empty() ? "" : " | ") + prefix + option.name;
  }
  return patterns.empty() ? "" : "    " + patterns + ") return 0 ;;\n";
}

std::vector<std::string> OptionNames(const VerbFacts& verb) {
  std::vector<std::string> names;
  for (const OptionFacts& option : verb.options) names.push_back(option.name);
  return names;
}

}  // namespace

std::string BashCompletion(const ProgramFacts& facts) {
  std::string offers = OptionRows(facts.program, "*:");
  std::string takesValue = ValuePatterns(facts.program, "*:");
  std::string options;
  std::vector<std::string> verbs;
  for (const VerbFacts& verb : facts.verbs) {
    offers += OptionRows(verb, verb.name + ":") + ArgumentRows(verb);
    takesValue += ValuePatterns(verb, verb.name + ":");
    const auto names = OptionNames(verb);
    if (!names.empty()) options += "    " + verb.name + ") _kvtele_reply " + QuotedWords(names) + " ;;\n";
    verbs.push_back(verb.name);
  }
  return kMadeByBuild + std::string(kBegin) +
         "_kvtele_offer() { # VERB:OPTION or VERB:NUMBER-OF-ARGUMENT\n  case $1 in\n" + offers +
         "  esac\n}\n_kvtele_takes_value() { # VERB:OPTION\n  case $1 in\n" + takesValue +
         "  esac\n  return 1\n}\n_kvtele_options() { # VERB\n  _kvtele_reply " +
         QuotedWords(OptionNames(facts.program)) + "\n  case $1 in\n" + options +
         "  esac\n}\n_kvtele_verbs() { _kvtele_reply " + QuotedWords(verbs) + "; }\n" + kEnd;
}

}  // namespace kv::cli
