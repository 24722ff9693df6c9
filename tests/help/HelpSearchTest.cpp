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

// `pages`: "cloner", or "cloner|clone-create" where each of them answers.
bool IsAmongFirstThree(const std::vector<HelpSearch::Hit>& hits, const std::string& pages) {
  const auto isOneOfThem = [&](const HelpSearch::Hit& hit) {
    return ("|" + pages + "|").contains("|" + hit.page.substr(0, hit.page.find('.')) + "|");
  };
  return std::ranges::any_of(hits | std::views::take(3), isOneOfThem);
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
    const std::string pages = line.substr(0, colon);
    const auto hits = search.Find(line.substr(colon + 2)).hits;
    const bool isFound = IsAmongFirstThree(hits, pages);
    ++asked;
    found += isFound ? 1U : 0U;
    if (!isFound) std::cout << line << "; first is " << (hits.empty() ? "nothing" : hits.front().page) << "\n";
  }
  EXPECT_GE(asked, 1700U);
  EXPECT_GE(100 * found, 98 * asked) << found << " of " << asked;
}

TEST(HelpSearchTest, FindsPagesByWhatIsNoWordOfTheirs) {
  struct Row {
    const char* question;
    const char* page;
  };
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  for (const Row& row :
       {Row{"login", "log-in"}, Row{"log in", "log-in"}, Row{"logging in", "log-in"}, Row{"clonefile", "cloner"},
        Row{"COM17", "serial-line"}, Row{"bakcup", "clone-create"}, Row{"modme", "modem"},
        Row{"Opening the link failed: COM3 is in use.", "error-port"}, Row{"exit code 5", "scripts"},
        Row{"chksum eror", "error-damaged"}, Row{"are retentive tags re-initialised", "values-at-risk"}}) {
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
