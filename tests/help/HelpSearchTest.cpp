// Whether people find what they look for, in their own words and in those of other tools.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <ranges>
#include <sstream>

#include "help/HelpSearch.h"
#include "help/HelpWords.h"
#include "help/HtmlText.h"
#include "tests/help/BuiltHelp.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryFolder.h"

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

// Of a book of a few pages, which stays as it is: what its index, its contents and its pages say, what the words of
// each question of tests/help/answers.txt are taken for, and every hit with its score. KV_RENEW_LOOKS=1 renews the
// file.
TEST(HelpSearchTest, AnswersEachQuestionAsItDid) {
  const std::filesystem::path file = KV_TEST_DATA "/help/answers.txt";
  const HelpBook book = HelpBook::Open("", KV_TEST_DATA "/help/book").value();
  const HelpSearch search(book);
  std::ostringstream now;
  now << std::fixed << std::setprecision(4);
  const auto list = [&](const char* what, const auto& texts) {
    now << "  " << what;
    for (const std::string& text : texts) now << " " << text;
    now << "\n";
  };
  const std::string written = TemporaryFolder::Content(file);
  std::istringstream lines(written);
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("? ")) continue;
    const std::string question = line.substr(2);
    const auto answer = search.Find(question);
    now << line << "\n";
    list("words", WordsOf(question, true));
    list("without small ones", WordsOf(question, false));
    list("main ones", MainWordsOf(question));
    list("pairs", PairsOf(question));
    list("taken", answer.taken);
    for (const auto& hit : answer.hits) now << "  " << hit.score << " " << hit.page << " " << hit.title << "\n";
    now << "  " << answer.complete << " complete\n";
  }
  for (const auto* entries : {&book.Contents(), &book.Index()}) {
    for (const auto& entry : *entries) now << entry.level << " " << entry.title << " " << entry.page << "\n";
  }
  for (const auto& entry : book.Contents()) {
    const HtmlPage page = ReadHtmlPage(book.Read(entry.page).value());
    now << page.title << "|" << page.keywords << "|" << page.questions << "|" << page.text << "\n";
    list("terms", page.terms), list("links", page.links);
  }
  if (std::getenv("KV_RENEW_LOOKS")) std::ofstream(file, std::ios::binary) << now.str();
  ExpectSameLines(now.str(), written, "? ");
}

}  // namespace
}  // namespace kv::test
