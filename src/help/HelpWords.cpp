#include "help/HelpWords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <utility>

namespace kv {
namespace {

constexpr std::size_t kLongestWord = 40;
// Of the letters of the longer word, so many in a hundred.
constexpr std::size_t kPercentOfAkin = 75;

// Words that stand in every question and tell nothing about it. In order, to be looked up.
constexpr auto kSmallWords = std::to_array<std::string_view>(
    {"a",        "able",    "about",  "actually", "also",    "although", "always",   "am",      "an",     "and",
     "any",      "anybody", "anyone", "anyway",   "as",      "at",       "because",  "being",   "best",   "but",
     "by",       "can",     "care",   "could",    "either",  "else",     "even",     "ever",    "for",    "from",
     "having",   "he",      "hello",  "her",      "here",    "hi",       "his",      "however", "i",      "id",
     "if",       "ill",     "im",     "into",     "it",      "its",      "ive",      "just",    "let",    "like",
     "lot",      "may",     "maybe",  "me",       "might",   "mine",     "must",     "my",      "now",    "of",
     "onto",     "or",      "ought",  "our",      "please",  "proper",   "properly", "quite",   "rather", "really",
     "seem",     "seems",   "shall",  "she",      "should",  "so",       "some",     "somehow", "such",   "suppose",
     "supposed", "sure",    "than",   "thanks",   "that",    "thats",    "the",      "their",   "them",   "then",
     "there",    "these",   "they",   "think",    "this",    "those",    "through",  "thus",    "too",    "trying",
     "under",    "us",      "use",    "used",     "uses",    "using",    "very",     "want",    "wanted", "wants",
     "way",      "we",      "went",   "whatever", "whether", "whole",    "will",     "with",    "within", "wonder",
     "would",    "yet",     "you",    "your"});
// Words that tell little, but something: what is asked with "where" is another thing than what is asked with "when". No
// page has to have them.
constexpr auto kAskingWords = std::to_array<std::string_view>(
    {"again",    "all",        "already", "anything", "are",   "be",    "been",      "between", "both",     "came",
     "come",     "comes",      "coming",  "did",      "do",    "does",  "doing",     "done",    "during",   "each",
     "every",    "everything", "exactly", "find",     "gave",  "get",   "gets",      "getting", "give",     "gives",
     "go",       "goes",       "going",   "gone",     "good",  "got",   "had",       "happen",  "happened", "happens",
     "has",      "have",       "how",     "idea",     "is",    "know",  "looks",     "made",    "make",     "makes",
     "making",   "many",       "mean",    "means",    "more",  "most",  "much",      "need",    "needs",    "never",
     "possible", "said",       "say",     "says",     "see",   "since", "something", "still",   "stuff",    "suddenly",
     "tell",     "tells",      "thing",   "things",   "told",  "until", "was",       "well",    "were",     "what",
     "whats",    "when",       "where",   "wheres",   "which", "while", "whom",      "whose",   "why",      "without"});
// What denies, all in one word: what does not answer is the same as what will not, and cannot.
constexpr auto kDenying = std::to_array<std::string_view>(
    {"aint", "arent", "cannot", "cant",    "couldnt",  "didnt",  "doesnt", "dont",   "hasnt", "havent", "isnt",
     "no",   "nor",   "not",    "nothing", "shouldnt", "unable", "wasnt",  "werent", "wont",  "wouldnt"});
// Small words that make another one with their neighbour: "log in", "set up", "switch off".
constexpr auto kParticles =
    std::to_array<std::string_view>({"back", "down", "in", "not", "off", "on", "out", "over", "to", "up"});

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
                                                 {"ied", "y"},
                                                 {"our", "or"},
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

static_assert(std::ranges::is_sorted(kSmallWords) && std::ranges::is_sorted(kDenying) &&
              std::ranges::is_sorted(kParticles) && std::ranges::is_sorted(kAskingWords));

bool IsOneOf(std::span<const std::string_view> words, std::string_view word) {
  return std::ranges::binary_search(words, word);
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
  // "recognize" and "analyzer" are written with an s as well.
  if (word.size() > kShortestStem && (word.ends_with("iz") || word.ends_with("yz"))) word.back() = 's';
  return word;
}

// The words as they are written, in small letters.
std::vector<std::string> RawWords(std::string_view text) {
  std::vector<std::string> words;
  std::string word;
  const auto end = [&] {
    if (!word.empty() && word.size() <= kLongestWord) words.push_back(IsOneOf(kDenying, word) ? "not" : word);
    word.clear();
  };
  for (const char each : text) {
    const char c = each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each;
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

}  // namespace

std::vector<std::string> WordsOf(std::string_view text, bool withSmall) {
  std::vector<std::string> words;
  for (std::string& word : RawWords(text)) {
    if (withSmall || !(IsOneOf(kSmallWords, word) || IsOneOf(kParticles, word))) words.push_back(Stem(std::move(word)));
  }
  return words;
}

std::set<std::string> MainWordsOf(std::string_view text) {
  std::set<std::string> words;
  for (const std::string& word : RawWords(text)) {
    const bool isSmall = IsOneOf(kSmallWords, word) || IsOneOf(kParticles, word) || IsOneOf(kAskingWords, word);
    if (!isSmall) words.insert(Stem(word));
  }
  return words;
}

std::vector<std::string> PairsOf(std::string_view text) {
  std::vector<std::string> pairs;
  std::string before;
  bool wasParticle = false;
  for (const std::string& word : RawWords(text)) {
    const bool isParticle = IsOneOf(kParticles, word);
    const std::string stem = IsOneOf(kSmallWords, word) ? std::string() : Stem(word);
    if (!before.empty() && !stem.empty() && !(isParticle && wasParticle)) pairs.push_back(before + stem);
    before = stem;
    wasParticle = isParticle;
  }
  return pairs;
}

std::vector<std::string> TermsOf(std::string_view text, bool withSmall) {
  std::vector<std::string> terms = WordsOf(text, withSmall);
  std::ranges::move(PairsOf(text), std::back_inserter(terms));
  return terms;
}

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

bool AreAkin(std::string_view a, std::string_view b) {
  const auto common = static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
  return common >= kLettersOfAkin && 100 * common >= kPercentOfAkin * std::max(a.size(), b.size());
}

}  // namespace kv
