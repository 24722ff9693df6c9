#include "help/HelpTopics.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"

namespace kv {
namespace {

// clang-format off
constexpr auto kTopics = std::to_array<HelpTopic>({
    // number, level, page, places. tools/build-help reads these lines, too.
    {100, 0, "start",              "frmMain"},
    {101, 1, "first-minute",       ""},
    {102, 1, "main-log",           "tblLog"},
    {103, 1, "choosing-files",     "FileDialog"},
    {104, 1, "questions",          "MessageBox InputBox"},
    {105, 1, "help-window",        "frmHelp PrintDialog"},
    {106, 1, "windows-and-keys",   ""},
    {107, 1, "log-in",             "frmLogIn"},
    {108, 1, "about",              "frmAbout"},
    {200, 0, "reach-a-controller", ""},
    {201, 1, "go-on-line",         "pageController sidController pageValues"},
    {212, 1, "panel",              "pagePanel"},
    {202, 1, "link-settings",      "frmComParams"},
    {203, 1, "serial-line",        "cboPort"},
    {204, 1, "modem",              "frmModem"},
    {205, 1, "dial-in",            ""},
    {206, 1, "model",              ""},
    {207, 1, "sessions",           "frmSession pageStart"},
    {208, 1, "pages-files",        ""},
    {211, 1, "caches",             ""},
    {210, 1, "journal",            "frmJournal"},
    {213, 1, "import-cache",       "frmRestoreCache"},
    {209, 1, "trace",              "frmTrace"},
    {300, 0, "operands",           "frmDataTypesView"},
    {301, 1, "operand-types",      "vsfOperands"},
    {302, 1, "regions",            "vsfRegions"},
    {303, 1, "read-and-write",     ""},
    {304, 1, "watch",              "bnrController"},
    {305, 1, "change-values",      "cellEditor"},
    {306, 1, "display-forms",      "cboSize cboFormat"},
    {307, 1, "export-import",      ""},
    {308, 1, "characters",         "frmHexSelector"},
    {400, 0, "cloner",             "frmDumpPLC"},
    {401, 1, "clone-create",       ""},
    {402, 1, "clone-restore",      ""},
    {403, 1, "clone-verify",       "cboVerify"},
    {404, 1, "replace-controller", ""},
    {500, 0, "downloader",         "frmDownloader"},
    {501, 1, "download-project",   "fraProject"},
    {502, 1, "download-os",        "frmOsInfo frmBrioQ50OsInfo fraOSDownloader"},
    {503, 1, "values-at-risk",     "frmIncompatibleBios"},
    {504, 1, "download-cut",       ""},
    {600, 0, "command-line",       ""},
    {601, 1, "scripts",            ""},
    {602, 1, "simulator",          ""},
    {700, 0, "errors",             ""},
    {701, 1, "error-no-answer",    ""},
    {702, 1, "error-damaged",      ""},
    {703, 1, "error-port",         ""},
    {704, 1, "error-lost",         ""},
    {705, 1, "error-refused",      ""},
    {706, 1, "error-password",     ""},
    {707, 1, "error-busy",         ""},
    {708, 1, "error-other",        ""},
    {709, 1, "error-unsure",       ""},
    {710, 1, "error-os",           ""},
    {711, 1, "error-files",        ""},
    {712, 1, "error-report",       ""},
});
// clang-format on

// By what their messages say, upper and lower case alike. The first that stands in a message counts: what is special
// comes before what many messages say.
struct ErrorPhrase {
  std::string_view phrase;
  std::int32_t number;
};

constexpr auto kErrorPhrases = std::to_array<ErrorPhrase>({
    {"could not be recorded", 210},
    {"change journal", 210},
    {"colour cache file", 211},
    {"fonts and images", 211},
    {"password", 706},
    {"another controller answered", 708},
    {"another controller is connected", 708},
    {"does not match the project", 708},
    {"could not be found out", 709},
    {"was executed is not known", 709},
    {"BOOTSTRAP", 710},
    {"Operating Systems (O/S)", 710},
    {"outdated version", 710},
    {"O/S is too old", 710},
    {"no reply after", 701},
    {"does not respond", 701},
    {"nobody answers", 701},
    {"no reply arrived whole", 702},
    {"no reply ended", 702},
    {"the connection was lost", 704},
    {"the link is closed", 704},
    {"connection broke", 704},
    {"busy", 707},
    {"another request is under way", 707},
    {"does not say who it is", 707},
    {"the controller refused", 705},
    {"understands text commands only", 705},
    {"the modem", 204},
    {"opening the link", 703},
    {"cannot be reached", 703},
    {"serial port", 703},
    {"is in use", 703},
    {"no permission to use", 703},
    {"has to end", 712},
    {"error report", 712},
    {"cannot be opened", 711},
    {"could not be written", 711},
    {"cannot be written", 711},
    {"disk", 711},
    {".ini", 711},
});

bool IsPlaceOf(const HelpTopic& topic, std::string_view place) {
  for (std::string_view left = topic.places; !left.empty();) {
    if (TakeField(left, ' ') == place) return true;
  }
  return false;
}

const HelpTopic* TopicOfPlace(std::string_view place) {
  const auto topic = std::ranges::find_if(kTopics, [&](const HelpTopic& each) { return IsPlaceOf(each, place); });
  return place.empty() || topic == kTopics.end() ? nullptr : &*topic;
}

}  // namespace

std::span<const HelpTopic> HelpTopics() {
  return kTopics;
}

const HelpTopic* FindHelpTopic(std::int32_t number) {
  const auto topic = std::ranges::find(kTopics, number, &HelpTopic::number);
  return topic == kTopics.end() ? nullptr : &*topic;
}

const HelpTopic* FindHelpTopic(std::string_view page) {
  const auto topic = std::ranges::find(kTopics, page, &HelpTopic::page);
  return topic == kTopics.end() ? nullptr : &*topic;
}

const HelpTopic* HelpTopicAt(std::span<const std::string> names) {
  for (const std::string& name : names) {
    if (const HelpTopic* topic = TopicOfPlace(names.back() + "/" + name)) return topic;
    if (const HelpTopic* topic = TopicOfPlace(name)) return topic;
  }
  return nullptr;
}

const HelpTopic* HelpTopicOfError(std::string_view message) {
  const std::string folded = UpperCased(message);
  for (const ErrorPhrase& row : kErrorPhrases) {
    if (folded.contains(UpperCased(row.phrase))) return FindHelpTopic(row.number);
  }
  return nullptr;
}

std::vector<std::string_view> ErrorPhrasesOf(const HelpTopic& topic) {
  std::vector<std::string_view> phrases;
  for (const ErrorPhrase& row : kErrorPhrases) {
    if (row.number == topic.number) phrases.push_back(row.phrase);
  }
  return phrases;
}

}  // namespace kv
