#include "help/HelpSearch.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <set>
#include <utility>

#include "base/Texts.h"
#include "help/HelpSynonyms.h"
#include "help/HelpTopics.h"
#include "help/HelpWords.h"
#include "help/HtmlText.h"

namespace kv {
namespace {

// What a word in a part of a page weighs, and how many words such a part usually has: the more it has, the less each
// of them says.
struct Field {
  double weight;
  double usual;
};
// These figures and those below are the best of some hundred that were tried on questions of strangers (tests/help);
// most may be half or twice as large and find the same.
constexpr Field kInTitle{6, 3};
constexpr Field kInKeywords{3, 40};
constexpr Field kInQuestions{4.5, 250};
constexpr Field kInText{1.5, 180};
constexpr double kByLength = 0.15;
// The weight of a page at which half of what a word can add is reached.
constexpr double kHalf = 4;

// What others stand for, against the word itself.
constexpr double kConceptPart = 0.7;
constexpr double kAkinPart = 0.4;
constexpr double kPrefixPart = 0.5;
constexpr double kCutPart = 0.8;
constexpr double kGuessPart = 0.8;
// A pair of neighbours is there in addition to its words.
constexpr double kPairPart = 0.3;

// What a page gains for a phrase of its own that is the question, against what the words add up to.
constexpr double kNearest = 3;
// A phrase counts as somewhat longer than it is: a single word in common is no question in common.
constexpr double kPhraseRest = 2;

// What the odds of the words count, against what the words add up to, and of how many phrases of all kinds each page is
// taken to have been asked besides its own: what stands in one or two says little.
constexpr double kOdds = 0.4;
constexpr double kCalm = 60;
// A word stands for so much at most, whatever begins with it.
constexpr double kMostMeant = 5;

// Pages with less than this part of what the best one has are not shown.
constexpr double kLeastScore = 0.25;

constexpr std::size_t kShortestPrefix = 2;
constexpr std::size_t kShortestGuess = 3;  // words of fewer letters are not guessed at
constexpr std::size_t kShortestPiece = 3;
constexpr std::size_t kMostGuesses = 5;
constexpr std::size_t kMostWords = 24;
// No word that is typed begins so.
constexpr char kConceptMark = '#';

}  // namespace

HelpSearch::HelpSearch(const HelpBook& book) {
  AddConcepts();
  for (const HelpBook::Entry& entry : book.Contents()) AddPage(book, entry);
  WeighTerms();
  WeighAsked();
}

void HelpSearch::AddConcepts() {
  std::size_t number = 0;
  for (const std::string_view group : SynonymGroups()) {
    const std::string row = kConceptMark + std::to_string(++number);
    mTerms[row];  // there, also when no page has one of its words
    for (const std::string& word : WordsOf(group, true)) {
      mTerms[word].concepts.push_back(row);
      mTerms[word].isWord = true;
    }
  }
}

void HelpSearch::AddPage(const HelpBook& book, const HelpBook::Entry& entry) {
  const HtmlPage page = ReadHtmlPage(book.Read(entry.page).value_or(""));
  const std::size_t index = mPages.size();
  mPages.push_back({entry.page, entry.title, 0});
  mNotAsked.push_back(0);
  // An error is looked for by what its message says, too.
  std::string questions = page.questions;
  if (const HelpTopic* topic = FindHelpTopic(std::string_view(entry.page).substr(0, entry.page.find('.')))) {
    for (const std::string_view phrase : ErrorPhrasesOf(*topic)) questions += "; " + std::string(phrase);
  }
  AddField(entry.title, kInTitle.weight, kInTitle.usual, index);
  AddField(page.keywords, kInKeywords.weight, kInKeywords.usual, index);
  AddField(questions, kInQuestions.weight, kInQuestions.usual, index);
  AddField(page.text, kInText.weight, kInText.usual, index);
  AddPhrases(entry.title, ';', index);
  AddPhrases(page.keywords, ',', index);
  AddPhrases(questions, ';', index);
}

std::vector<std::string> HelpSearch::WithConcepts(std::vector<std::string> terms) const {
  const std::vector<std::string> words = terms;
  for (const std::string& word : words) {
    if (const auto term = mTerms.find(word); term != mTerms.end())
      std::ranges::copy(term->second.concepts, std::back_inserter(terms));
  }
  return terms;
}

// The more words a part of a page has, the less each of them says.
void HelpSearch::AddField(std::string_view text, double weight, double usual, std::size_t page) {
  const auto length = static_cast<double>(WordsOf(text, false).size());
  const double each = weight / (1 - kByLength + kByLength * length / usual);
  for (const std::string& term : WithConcepts(TermsOf(text, true))) mTerms[term].pages[page] += each;
  for (const std::string& word : WordsOf(text, true)) mTerms[word].isWord = true;
}

void HelpSearch::AddPhrases(std::string_view list, char separator, std::size_t page) {
  while (!list.empty()) {
    const std::string_view phrase = TakeField(list, separator);
    const std::vector<std::string> all = WithConcepts(TermsOf(phrase, false));
    const std::set<std::string> terms(all.begin(), all.end());
    double squares = 0;
    for (const std::string& term : terms) squares += PartOf(term) * PartOf(term);
    for (const std::string& term : terms) {
      const double share = PartOf(term) / std::sqrt(squares);
      mTerms[term].phrases[mPhrases.size()] = 1;
      mTerms[term].asked[page] += share;
      mNotAsked[page] += share;
    }
    mPhrases.push_back({page, 0});
  }
}

void HelpSearch::WeighTerms() {
  const auto all = static_cast<double>(mPages.size());
  for (auto& [word, term] : mTerms) {
    double sum = 0;
    double squares = 0;
    for (const auto& [page, weight] : term.pages) {
      sum += weight;
      squares += weight * weight;
    }
    const double pages = sum > 0 ? sum * sum / squares : 0;
    term.rarity = std::log(1 + (all - pages + 0.5) / (pages + 0.5));
  }
  // "CPU" stands on one page, and tells as little as "controller".
  for (auto& [word, term] : mTerms) {
    if (term.concepts.empty()) continue;
    double least = term.rarity;
    for (const std::string& each : term.concepts) least = std::min(least, mTerms.at(each).rarity);
    term.rarity = std::midpoint(term.rarity, least);
  }
  for (const auto& [word, term] : mTerms) {
    if (word.starts_with(kConceptMark)) continue;
    for (const auto& [phrase, count] : term.phrases) mPhrases[phrase].weight += term.rarity;
  }
}

// What a term tells beside the word itself.
double HelpSearch::PartOf(const std::string& term) const {
  if (term.starts_with(kConceptMark)) return kConceptPart;
  const auto known = mTerms.find(term);
  return known != mTerms.end() && known->second.isWord ? 1 : kPairPart;
}

// From counts to logarithms of odds: how much more often a page is asked with a term than pages are on average.
void HelpSearch::WeighAsked() {
  const double all = std::accumulate(mNotAsked.begin(), mNotAsked.end(), 0.0);
  for (auto& [word, term] : mTerms) {
    double inAll = 0;
    for (const auto& [page, count] : term.asked) inAll += count;
    for (auto& [page, count] : term.asked) count = std::log1p(count * all / (inAll * kCalm));
  }
  for (double& phrases : mNotAsked) phrases = -std::log1p(phrases / kCalm);
}

HelpSearch::Answer HelpSearch::Find(std::string_view question) const {
  Answer answer;
  std::vector<std::string> words = WordsOf(question, false);
  if (words.empty()) words = WordsOf(question, true);
  if (words.size() > kMostWords) words.resize(kMostWords);
  std::set<std::string> mainLeft = MainWordsOf(question);  // those that have not been looked for yet
  const std::size_t mainWords = mainLeft.size();
  std::vector<Meanings> asked;
  std::vector<double> scores(mPages.size());
  std::vector<std::size_t> found(mPages.size());
  for (const std::string& word : words) {
    const std::size_t isMain = mainLeft.erase(word);
    asked.push_back(isMain > 0 || words.size() == 1 ? Look(word, answer.taken) : LookAsItIs(word));
    for (const auto& [page, weight] : Weigh(asked.back(), &Term::pages)) {
      scores[page] += weight;
      found[page] += isMain;
    }
  }
  for (const std::string& pair : PairsOf(question)) {
    Meanings meanings;
    AddMeaning(pair, kPairPart, meanings);
    if (meanings.empty()) continue;
    for (const auto& [page, weight] : Weigh(meanings, &Term::pages)) scores[page] += weight;
    asked.push_back(std::move(meanings));
  }
  AddNearest(asked, scores);
  AddOdds(asked, scores);
  std::vector<std::size_t> order(mPages.size());
  std::iota(order.begin(), order.end(), 0U);
  std::ranges::sort(order, {}, [&](std::size_t page) { return std::pair(-scores[page], page); });
  for (const std::size_t page : order) {
    if (answer.hits.size() == kMostHits || scores[page] <= kLeastScore * scores[order.front()]) break;
    answer.hits.push_back(mPages[page]);
    answer.hits.back().score = scores[page];
    answer.complete += found[page] == mainWords ? 1U : 0U;
  }
  return answer;
}

// What the meanings weigh on each page: the best of them counts.
HelpSearch::Weights HelpSearch::Weigh(const Meanings& meanings, Weights Term::* where) const {
  Weights weights;
  for (const Meaning& meaning : meanings) {
    const Term& term = mTerms.at(meaning.term);
    for (const auto& [place, weight] : term.*where) {
      double& best = weights[place];
      best = std::max(best, meaning.part * term.rarity * weight * (1 + kHalf) / (weight + kHalf));
    }
  }
  return weights;
}

double HelpSearch::MostOf(const Meanings& meanings) const {
  double most = 0;
  for (const auto& [term, part] : meanings) most = std::max(most, part * mTerms.at(term).rarity);
  return most;
}

void HelpSearch::AddNearest(const std::vector<Meanings>& asked, std::vector<double>& scores) const {
  double all = 0;
  Weights common;
  for (const Meanings& meanings : asked) {
    all += MostOf(meanings);
    for (const auto& [phrase, weight] : Weigh(meanings, &Term::phrases)) common[phrase] += weight;
  }
  std::vector<std::pair<double, double>> nearest(mPages.size());  // the best two
  for (const auto& [phrase, weight] : common) {
    auto& [first, second] = nearest[mPhrases[phrase].page];
    double near = weight / std::sqrt((all + kPhraseRest) * (mPhrases[phrase].weight + kPhraseRest));
    if (near > first) std::swap(near, first);
    second = std::max(second, near);
  }
  for (std::size_t page = 0; page < mPages.size(); ++page) {
    scores[page] += kNearest * all * (nearest[page].first + nearest[page].second / 2);
  }
}

void HelpSearch::AddOdds(const std::vector<Meanings>& asked, std::vector<double>& scores) const {
  std::map<std::string_view, double> parts;
  double all = 0;
  for (const Meanings& meanings : asked) {
    all += MostOf(meanings);
    double sum = 0;
    for (const auto& [term, part] : meanings) sum += part;
    const double scale = std::min(1.0, kMostMeant / sum);
    for (const auto& [term, part] : meanings) parts[term] = std::max(parts[term], scale * part);
  }
  double squares = 0;
  double sum = 0;
  std::vector<double> odds(mPages.size());
  for (const auto& [name, part] : parts) {
    const Term& term = mTerms.find(name)->second;
    if (term.asked.empty()) continue;
    squares += part * part;
    sum += part;
    for (const auto& [page, weight] : term.asked) odds[page] += part * weight;
  }
  if (squares == 0) return;
  const double scale = kOdds * all / std::sqrt(squares);
  for (std::size_t page = 0; page < mPages.size(); ++page) {
    const double more = scale * (odds[page] + sum * mNotAsked[page]);
    scores[page] = std::max(scores[page] + more, scores[page] / 2);
  }
}

void HelpSearch::AddMeaning(const std::string& word, double part, Meanings& meanings) const {
  const auto term = mTerms.find(word);
  if (term == mTerms.end()) return;
  if (!term->second.pages.empty()) meanings.push_back({word, part});
  for (const std::string& each : term->second.concepts) {
    if (!mTerms.at(each).pages.empty()) meanings.push_back({each, kConceptPart * part});
  }
}

// "do" is the beginning of "download", but not in a question.
HelpSearch::Meanings HelpSearch::LookAsItIs(const std::string& word) const {
  Meanings meanings;
  AddMeaning(word, 1, meanings);
  return meanings;
}

HelpSearch::Meanings HelpSearch::Look(const std::string& word, std::vector<std::string>& taken) const {
  Meanings meanings;
  AddMeaning(word, 1, meanings);
  const bool isKnown = !meanings.empty();
  const std::string beginning = word.substr(0, std::min(word.size(), kLettersOfAkin));
  for (auto at = mTerms.lower_bound(beginning); at != mTerms.end() && at->first.starts_with(beginning); ++at) {
    if (at->first == word || !at->second.isWord) continue;
    if (AreAkin(word, at->first)) {
      AddMeaning(at->first, kAkinPart, meanings);
    } else if (word.size() >= kShortestPrefix && at->first.starts_with(word)) {
      AddMeaning(at->first, isKnown ? kPrefixPart / 2 : kPrefixPart, meanings);
    }
  }
  if (!meanings.empty()) return meanings;
  AddPieces(word, meanings);
  if (!meanings.empty()) return meanings;
  for (const std::string& each : NearlySpelt(word)) {
    AddMeaning(each, kGuessPart, meanings);
    taken.push_back(each);
  }
  return meanings;
}

// "clonefile" is "clone" and "file", and "com12" is "com".
void HelpSearch::AddPieces(const std::string& word, Meanings& meanings) const {
  const std::size_t letters = word.find_last_not_of("0123456789") + 1;
  if (letters >= kShortestPrefix && letters < word.size()) return AddMeaning(word.substr(0, letters), 1, meanings);
  for (std::size_t at = kShortestPiece; at + kShortestPiece <= word.size(); ++at) {
    const std::vector<std::string> pieces = WordsOf(word.substr(0, at) + " " + word.substr(at), true);
    if (!std::ranges::all_of(pieces, [&](const std::string& each) { return mTerms.contains(each); })) continue;
    for (const std::string& each : pieces) AddMeaning(each, kCutPart, meanings);
    return;
  }
}

// The words with the fewest letters that differ.
std::vector<std::string> HelpSearch::NearlySpelt(const std::string& word) const {
  if (word.size() < kShortestGuess) return {};
  std::size_t least = word.size() < 2 * kShortestGuess ? 1 : 2;
  std::vector<std::string> nearest;
  for (const auto& [each, term] : mTerms) {
    if (!term.isWord) continue;
    const std::size_t distance = Distance(word, each, least);
    if (distance > least) continue;
    if (distance < least) nearest.clear();
    least = distance;
    if (nearest.size() < kMostGuesses) nearest.push_back(each);
  }
  return nearest;
}

}  // namespace kv
