// Whether people find what they look for, in their own words and in those of other tools.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <ranges>

#include "help/HelpSearch.h"
#include "help/HelpWords.h"
#include "tests/help/BuiltHelp.h"

namespace kv::test {
namespace {

bool IsAmongFirstThree(const std::vector<HelpSearch::Hit>& hits, const std::string& page) {
  const auto first = hits | std::views::take(3);
  return std::ranges::find(first, page, &HelpSearch::Hit::page) != first.end();
}

TEST(HelpSearchTest, FindsTheRightPageAmongTheFirstThree) {
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  std::ifstream questions(KV_TEST_DATA "/help/questions.txt");
  std::size_t asked = 0;
  std::size_t found = 0;
  for (std::string line; std::getline(questions, line);) {
    const std::size_t colon = line.find(": ");
    if (line.starts_with('#') || colon == std::string::npos) continue;
    const std::string page = line.substr(0, colon) + ".html";
    const auto hits = search.Find(line.substr(colon + 2)).hits;
    const bool isFound = IsAmongFirstThree(hits, page);
    ++asked;
    found += isFound ? 1U : 0U;
    if (!isFound) std::cout << line << "; first is " << (hits.empty() ? "nothing" : hits.front().page) << "\n";
  }
  EXPECT_GE(asked, 400U);
  EXPECT_GE(100 * found, 95 * asked) << found << " of " << asked;
}

TEST(HelpSearchTest, FindsPagesByWhatIsNoWordOfTheirs) {
  struct Row {
    const char* question;
    const char* page;
  };
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  for (const Row& row :
       {Row{"login", "log-in.html"}, Row{"log in", "log-in.html"}, Row{"logging in", "log-in.html"},
        Row{"clonefile", "cloner.html"}, Row{"COM17", "serial-line.html"}, Row{"bakcup", "clone-create.html"},
        Row{"modme", "modem.html"}, Row{"Opening the link failed: COM3 is in use.", "error-port.html"},
        Row{"exit code 5", "scripts.html"}}) {
    EXPECT_TRUE(IsAmongFirstThree(search.Find(row.question).hits, row.page)) << row.question;
  }
}

TEST(HelpSearchTest, TakesTheWordBeforeItsBeginningAndGuessesOnlyWhereNothingIsFound) {
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  EXPECT_EQ(search.Find("modem").hits.front().page, "modem.html");
  EXPECT_TRUE(search.Find("modem").taken.empty());
  const auto typo = search.Find("modme");
  EXPECT_THAT(typo.taken, testing::Contains("modem"));
  EXPECT_THAT(typo.hits.front().page, "modem.html");
  const auto some = search.Find("modem umbrella");
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
                         Row{"stopped", "stop"}, Row{"settings", "setting"}, Row{"O/S", "os"}, Row{"copied", "copy"},
                         Row{"recognize", "recognise"}, Row{"colour", "color"}, Row{"doesn't", "cannot"}}) {
    EXPECT_EQ(WordsOf(row.one, true), WordsOf(row.other, true)) << row.one;
  }
  EXPECT_TRUE(MainWordsOf("how do I get there").empty());
}

}  // namespace
}  // namespace kv::test
