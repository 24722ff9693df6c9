#include "help/HelpSearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <tuple>
#include <utility>

#include "base/Texts.h"
#include "help/HelpSynonyms.h"
#include "help/HtmlText.h"

namespace kv {
namespace {

constexpr double kInTitle = 4;
constexpr double kInSynonyms = 4;
constexpr double kInText = 1;
// Of a longer word that only begins like the one that is looked for, against the word itself.
constexpr double kPrefixPart = 0.4;
// Of what others say for the word.
constexpr double kSynonymPart = 0.6;
constexpr std::size_t kShortestPrefix = 2;
// Words of fewer letters are not guessed at.
constexpr std::size_t kShortestGuess = 4;
constexpr std::size_t kMostGuesses = 3;
// More than what words add up to.
constexpr double kReadsAlike = 20;
constexpr std::size_t kLongestWord = 40;
constexpr std::size_t kMostWords = 24;
// More words than these are a question, in which some tell nothing: what they weigh counts more than how many a page
// has.
constexpr std::size_t kMostKeywords = 2;

// Words that stand in every question and tell nothing about it.
constexpr auto kSmallWords = std::to_array<std::string_view>(
    {"a",    "an",    "and",    "any",   "are",   "as",    "at",    "be",   "but",  "by",   "can",  "could",
     "did",  "do",    "does",   "doe",   "dont",  "for",   "from",  "get",  "got",  "ha",   "had",  "has",
     "have", "how",   "i",      "if",    "in",    "into",  "is",    "it",   "its",  "me",   "my",   "no",
     "not",  "of",    "on",     "onto",  "or",    "our",   "out",   "so",   "some", "that", "the",  "their",
     "them", "there", "they",   "this",  "thi",   "to",    "up",    "us",   "use",  "want", "was",  "wa",
     "we",   "what",  "when",   "where", "which", "who",   "why",   "will", "with", "you",  "your", "then",
     "than", "after", "before", "make",  "mean",  "means", "please"});

// Endings, the longer first, with what stands for them, and how many letters a word keeps at least.
struct Ending {
  std::string_view ending;
  std::string_view instead;
  std::size_t least = 3;
};
constexpr auto kEndings = std::to_array<Ending>({{"nesses", ""},
                                                 {"ings", ""},
                                                 {"ness", ""},
                                                 {"tions", "t"},
                                                 {"tion", "t"},
                                                 {"ies", "y"},
                                                 {"ing", ""},
                                                 {"ers", "", 4},
                                                 {"ed", ""},
                                                 {"er", "", 4},
                                                 {"es", ""},
                                                 {"ly", ""},
                                                 {"s", ""},
                                                 {"e", ""}});
constexpr std::size_t kShortestStem = 3;

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
}

std::string Stem(std::string word) {
  if (word.ends_with("ss") || word.ends_with("us")) return word;
  for (const auto& [ending, instead, least] : kEndings) {
    if (!word.ends_with(ending) || word.size() < ending.size() + least) continue;
    word.replace(word.size() - ending.size(), ending.size(), instead);
    break;
  }
  const std::size_t size = word.size();
  const bool isDoubled = size > kShortestStem && word[size - 1] == word[size - 2];
  if (isDoubled && std::string_view("lsz").find(word.back()) == std::string_view::npos) word.pop_back();
  return word;
}

// How many letters have to be inserted, left out, replaced or exchanged with the next one; more than `most` is most
// + 1.
std::size_t Distance(std::string_view a, std::string_view b, std::size_t most) {
  if (a.size() > b.size() + most || b.size() > a.size() + most) return most + 1;
  std::vector<std::size_t> before;
  std::vector<std::size_t> last(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({row[j - 1] + 1, last[j] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
      const bool isExchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isExchanged) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before = std::exchange(last, std::move(row));
  }
  return last.back();
}

}  // namespace

std::vector<std::string> WordsOf(std::string_view text, bool withSmall) {
  std::vector<std::string> words;
  std::string word;
  const auto end = [&] {
    const bool isSmall = std::ranges::find(kSmallWords, std::string_view(word)) != kSmallWords.end();
    if (!word.empty() && word.size() <= kLongestWord && (withSmall || !isSmall)) words.push_back(Stem(word));
    word.clear();
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] >= 'A' && text[i] <= 'Z' ? static_cast<char>(text[i] - 'A' + 'a') : text[i];
    const bool isInside = (c == '/' && word.size() == 1) || c == '\'';  // "O/S" and "can't" are one word
    if (IsWordCharacter(c)) {
      word += c;
    } else if (!isInside) {
      end();
    }
  }
  end();
  return words;
}

HelpSearch::HelpSearch(const HelpBook& book) {
  AddSynonyms();
  for (const HelpBook::Entry& entry : book.Contents()) {
    const HtmlPage page = ReadHtmlPage(book.Read(entry.page).value_or(""));
    const std::size_t index = mPages.size();
    mPages.push_back({{entry.page, entry.title, 0}, {WordsOf(entry.title, false)}});
    for (std::string_view left = page.keywords; !left.empty();) {
      mPages.back().phrases.push_back(WordsOf(TakeField(left, ','), false));
    }
    Add(entry.title, kInTitle, index);
    Add(page.keywords, kInSynonyms, index);
    Add(page.text, kInText, index);
  }
}

void HelpSearch::AddSynonyms() {
  for (const std::string_view group : SynonymGroups()) {
    const std::vector<std::string> words = WordsOf(group, true);
    for (const std::string& word : words) {
      std::ranges::copy_if(words, std::back_inserter(mSynonyms[word]),
                           [&word](const std::string& other) { return other != word; });
    }
  }
}

// The first time counts most: a long page is no better one.
void HelpSearch::Add(std::string_view text, double weight, std::size_t page) {
  std::map<std::string, int> counts;
  for (const std::string& word : WordsOf(text, true)) ++counts[word];
  for (const auto& [word, count] : counts) mWords[word][page] += weight * (1 + std::log(count) / 2);
}

HelpSearch::Answer HelpSearch::Find(std::string_view question) const {
  std::vector<std::string> words = WordsOf(question, false);
  if (words.empty()) words = WordsOf(question, true);
  if (words.size() > kMostWords) words.resize(kMostWords);
  Answer answer;
  std::vector<double> scores(mPages.size());
  std::vector<std::size_t> found(mPages.size());
  for (const std::string& word : words) {
    const Match match = Look(word);
    answer.taken.insert(answer.taken.end(), match.taken.begin(), match.taken.end());
    for (const auto& [page, weight] : match.weights) {
      scores[page] += weight;
      ++found[page];
    }
  }
  std::vector<std::size_t> order;
  for (std::size_t page = 0; page < mPages.size(); ++page) {
    if (found[page] == 0) continue;
    order.push_back(page);
    if (std::ranges::find(mPages[page].phrases, words) != mPages[page].phrases.end()) scores[page] += kReadsAlike;
  }
  const bool isQuestion = words.size() > kMostKeywords;
  const auto rank = [&](std::size_t page) {
    return std::tuple(isQuestion ? 0 : found[page], scores[page], mPages.size() - page);
  };
  std::ranges::sort(order, std::ranges::greater(), rank);
  for (const std::size_t page : order) {
    const bool hasAll = found[page] == words.size();
    if (answer.hits.size() >= (hasAll ? kMostHits : kFewHits)) break;
    answer.complete += hasAll ? 1U : 0U;
    answer.hits.push_back(mPages[page].hit);
    answer.hits.back().score = scores[page];
  }
  return answer;
}

void HelpSearch::AddMatches(const std::string& stem, double part, Weights& weights) const {
  const auto found = mWords.find(stem);
  if (found == mWords.end()) return;
  // What stands on few pages tells more than what stands on all.
  const double rarity = std::log(1 + static_cast<double>(mPages.size()) / static_cast<double>(found->second.size()));
  for (const auto& [page, weight] : found->second) {
    double& best = weights[page];
    best = std::max(best, part * weight * rarity);
  }
}

HelpSearch::Match HelpSearch::Look(const std::string& stem) const {
  Match match;
  AddMatches(stem, 1, match.weights);
  if (stem.size() >= kShortestPrefix) {
    for (auto word = mWords.upper_bound(stem); word != mWords.end() && word->first.starts_with(stem); ++word) {
      AddMatches(word->first, kPrefixPart, match.weights);
    }
  }
  if (const auto others = mSynonyms.find(stem); others != mSynonyms.end()) {
    for (const std::string& other : others->second) AddMatches(other, kSynonymPart, match.weights);
  }
  if (match.weights.empty()) {
    match.taken = NearlySpelt(stem);
    // A shorter word leaves out letters that somebody has typed.
    for (const std::string& word : match.taken) {
      AddMatches(word, word.size() < stem.size() ? kPrefixPart : 1, match.weights);
    }
  }
  return match;
}

// The words with the fewest letters that differ.
std::vector<std::string> HelpSearch::NearlySpelt(const std::string& stem) const {
  if (stem.size() < kShortestGuess) return {};
  std::size_t least = stem.size() < 2 * kShortestGuess ? 1 : 2;
  std::vector<std::string> nearest;
  for (const auto& [word, pages] : mWords) {
    const std::size_t distance = Distance(stem, word, least);
    if (distance > least) continue;
    if (distance < least) nearest.clear();
    least = distance;
    if (nearest.size() < kMostGuesses) nearest.push_back(word);
  }
  return nearest;
}

}  // namespace kv
