#include "apps/kvtele/ManPage.h"

#include "base/Texts.h"

namespace kv::cli {

namespace {

// A backslash and a line that begins with "." or "'" would be orders; a plain "-" may be shown as another dash.
std::string Roff(std::string_view text) {
  std::string roff;
  bool isLineBegin = true;
  for (const char c : text) {
    if (isLineBegin && (c == '.' || c == '\'')) roff += "\\&";
    if (c == '\\') {
      roff += "\\e";
    } else if (c == '-') {
      roff += "\\-";
    } else {
      roff += c;
    }
    isLineBegin = c == '\n';
  }
  return roff;
}

std::string ListOf(const std::vector<OptionFacts>& options) {
  std::string list;
  for (const OptionFacts& option : options) {
    const bool isArgument = !option.name.starts_with('-');
    list += ".TP\n" + std::string(isArgument ? "\\fI" : "\\fB") + Roff(option.name) + "\\fR";
    if (!isArgument && !option.value.empty()) list += " \\fI" + Roff(option.value) + "\\fR";
    list += "\n" + Roff(option.text) + "\n";
  }
  return list;
}

std::string ExamplesOf(const VerbFacts& verb) {
  return ".PP\n.nf\n" + Roff(verb.examples) + ".fi\n";
}

std::string SectionOf(const VerbFacts& verb) {
  std::string usage = "\\fBkvtele\\fR [\\fIOPTIONS\\fR] \\fB" + Roff(verb.name) + "\\fR";
  for (const OptionFacts& argument : verb.arguments) usage += " \\fI" + Roff(argument.name) + "\\fR";
  return ".SS " + Roff(verb.name) + "\n" + usage + "\n.PP\n" + Roff(verb.summary) + ".\n" + ListOf(verb.arguments) +
         ListOf(verb.options) + ExamplesOf(verb);
}

}  // namespace

std::string ManPage(const ProgramFacts& facts, const std::string& version) {
  std::string page =
      ".TH KVTELE 1 \"\" \"Telepanel tools " + version + "\" \"User Commands\"\n.SH NAME\nkvtele \\- " +
      Roff(facts.program.summary) +
      "\n.SH SYNOPSIS\n\\fBkvtele\\fR [\\fIOPTIONS\\fR] \\fIVERB\\fR [\\fIARGUMENTS\\fR]\n.SH EXAMPLES\n" +
      ExamplesOf(facts.program) + ".SH OPTIONS\nThey go before or behind the verb.\n" + ListOf(facts.program.options) +
      ".SH VERBS\n";
  for (const VerbFacts& verb : facts.verbs) page += SectionOf(verb);
  page += ".SH ENVIRONMENT\n.TP\n\\fBKVTELE_PASSWORD\\fR\n" +
          Roff("The controller's password, where neither --password nor --password-file names one.") +
          "\n.SH EXIT STATUS\n" + Roff(facts.exitCodes) + "\n";
  return page;
}

}  // namespace kv::cli
