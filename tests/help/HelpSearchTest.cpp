// Whether people find what they look for, in their own words and in those of other tools.

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>

#include "help/HelpSearch.h"
#include "tests/help/BuiltHelp.h"

namespace kv::test {
namespace {

struct Question {
  const char* words;
  const char* page;
};

constexpr Question kQuestions[] = {
    {"how do I connect to the PLC", "reach-a-controller"},
    {"try it without hardware", "first-minute"},
    {"demo mode", "first-minute"},
    {"change IP address", "link-settings"},
    {"set timeout", "link-settings"},
    {"slave address", "link-settings"},
    {"baud rate", "serial-line"},
    {"COM port not in the list", "serial-line"},
    {"usb adapter", "serial-line"},
    {"phone number", "modem"},
    {"AT command", "modem"},
    {"PLC behind a router", "dial-in"},
    {"select PLC type", "model"},
    {"several plants", "sessions"},
    {"switch to another site", "sessions"},
    {"delete a session", "sessions"},
    {"make sure it is the right project", "pages-files"},
    {"sniffer", "trace"},
    {"record the traffic", "trace"},
    {"debug the protocol", "trace"},
    {"show tags", "operands"},
    {"read a register", "operand-types"},
    {"what is a coil", "operand-types"},
    {"what does MI mean", "operand-types"},
    {"save my watch list", "regions"},
    {"axt file", "regions"},
    {"force a value", "read-and-write"},
    {"write all registers", "read-and-write"},
    {"monitor live values", "watch"},
    {"refresh continuously", "watch"},
    {"undo my changes", "change-values"},
    {"paste from clipboard", "change-values"},
    {"show values as hex", "display-forms"},
    {"ascii text of registers", "display-forms"},
    {"export to Excel", "export-import"},
    {"import csv", "export-import"},
    {"semicolon instead of comma", "characters"},
    {"backup", "clone-create"},
    {"make a copy of the PLC", "cloner"},
    {"restore a backup", "clone-restore"},
    {"compare two backups", "clone-verify"},
    {"PLC is burnt, replace it", "replace-controller"},
    {"spare PLC", "replace-controller"},
    {"flash the program", "downloader"},
    {"load a ladder program", "download-project"},
    {"firmware update", "download-os"},
    {"upgrade the operating system", "download-os"},
    {"will I lose my values", "values-at-risk"},
    {"power failed during download", "download-cut"},
    {"bricked", "download-cut"},
    {"batch automation", "command-line"},
    {"exit codes", "scripts"},
    {"nightly backup", "scripts"},
    {"simulate a PLC", "simulator"},
    {"no communication", "error-no-answer"},
    {"PLC does not respond", "error-no-answer"},
    {"checksum errors", "error-damaged"},
    {"noise on the line", "error-damaged"},
    {"access denied to port", "error-port"},
    {"connection dropped", "error-lost"},
    {"value out of range", "error-refused"},
    {"forgot the password", "error-password"},
    {"wrong PLC connected", "error-other"},
    {"bootstrap mode", "error-os"},
    {"disk full", "error-files"},
    {"report a bug", "error-report"},
    {"keyboard shortcuts", "windows-and-keys"},
    {"print the manual", "help-window"},
    {"audit trail", "journal"},
    {"who changed the recipe", "journal"},
    {"sign in", "log-in"},
    {"which version do I have", "about"},
};

TEST(HelpSearchTest, FindsTheRightPageAmongTheFirstThree) {
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  std::size_t found = 0;
  for (const Question& question : kQuestions) {
    const HelpSearch::Answer answer = search.Find(question.words);
    std::string seen;
    bool isFound = false;
    for (std::size_t i = 0; i < std::min<std::size_t>(3, answer.hits.size()); ++i) {
      isFound = isFound || answer.hits[i].page == std::string(question.page) + ".html";
      seen += " " + answer.hits[i].page;
    }
    found += isFound ? 1U : 0U;
    if (!isFound) std::cout << question.words << ": " << question.page << " is not among" << seen << "\n";
  }
  EXPECT_GE(100 * found, 95 * std::size(kQuestions)) << found << " of " << std::size(kQuestions);
}

TEST(HelpSearchTest, TakesTheWordBeforeItsBeginningAndGuessesOnlyWhereNothingIsFound) {
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  EXPECT_EQ(search.Find("modem").hits.front().page, "modem.html");
  EXPECT_TRUE(search.Find("modem").taken.empty());
  const auto typo = search.Find("modme");
  EXPECT_THAT(typo.taken, testing::Contains("modem"));
  EXPECT_THAT(typo.hits.front().page, "modem.html");
  const auto some = search.Find("modem bricked");
  EXPECT_EQ(some.complete, 0U);
  EXPECT_FALSE(some.hits.empty());
  for (const char* nothing : {"", "   ", "zzqx", "\xff\xfe", "?!"})
    EXPECT_TRUE(search.Find(nothing).hits.empty()) << nothing;
  EXPECT_LE(search.Find(std::string(100000, 'a') + " the of").hits.size(), 30U);
}

TEST(HelpSearchTest, TakesFormsOfAWordForOneWord) {
  struct Row {
    const char* one;
    const char* other;
  };
  for (const Row& row : {Row{"downloads", "downloading"}, Row{"Restoring", "restore"}, Row{"copies", "copy"},
                         Row{"stopped", "stop"}, Row{"settings", "setting"}, Row{"O/S", "os"}}) {
    EXPECT_EQ(WordsOf(row.one, true), WordsOf(row.other, true)) << row.one;
  }
  EXPECT_TRUE(WordsOf("how do I get there", false).empty());
}

}  // namespace
}  // namespace kv::test
