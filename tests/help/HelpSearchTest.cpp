// Whether people find what they look for, in their own words and in those of other tools.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <ranges>

#include "help/HelpSearch.h"
#include "tests/help/BuiltHelp.h"

namespace kv::test {
namespace {

// How many of 100 questions of a file have their page among the first three.
std::size_t PercentFound(const std::string& file) {
  const HelpBook book = BuiltHelp();
  const HelpSearch search(book);
  std::ifstream questions(KV_TEST_DATA "/help/" + file);
  std::size_t asked = 0;
  std::size_t found = 0;
  for (std::string line; std::getline(questions, line);) {
    const std::size_t colon = line.find(": ");
    if (line.starts_with('#') || colon == std::string::npos) continue;
    const std::string page = line.substr(0, colon) + ".html";
    const auto hits = search.Find(line.substr(colon + 2)).hits;
    const bool isFound = std::ranges::find(hits | std::views::take(3), page, &HelpSearch::Hit::page) !=
                         (hits | std::views::take(3)).end();
    ++asked;
    found += isFound ? 1U : 0U;
    if (!isFound) std::cout << line << "; first is " << (hits.empty() ? "nothing" : hits.front().page) << "\n";
  }
  EXPECT_GE(asked, 60U);
  std::cout << found << " of " << asked << " in " << file << "\n";
  return 100 * found / std::max<std::size_t>(asked, 1);
}

TEST(HelpSearchTest, FindsTheRightPageAmongTheFirstThree) {
  EXPECT_GE(PercentFound("questions.txt"), 95U);
  EXPECT_GE(PercentFound("unseen.txt"), 65U) << "asked by those who did not know the pages";
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
