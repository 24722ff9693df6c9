#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "help/HelpBook.h"

namespace kv {

// Finds pages by the words of their users. Three things count: how much the words of the question weigh on a page (more
// in its title and among its own words than in its text, more where few pages have them, hardly more for the tenth
// time); how near the question is to something that people ask and the page is known to answer; and how much more often
// its words are asked of the page than of others, where what is never asked of it counts against it. A word stands for
// itself, and with less weight for what begins with it, what is of its family, what others say for it, and, where it
// stands nowhere, for what is nearly spelt like it.
class HelpSearch {
 public:
  explicit HelpSearch(const HelpBook& book);

  struct Hit {
    std::string page;
    std::string title;
    double score = 0;
  };
  struct Answer {
    std::vector<Hit> hits;           // the best first
    std::size_t complete = 0;        // so many of them have all words
    std::vector<std::string> taken;  // what was taken instead of words that stand nowhere: "modem" for "modme"
  };
  [[nodiscard]] Answer Find(std::string_view question) const;

 private:
  static constexpr std::size_t kMostHits = 30;

  using Weights = std::map<std::size_t, double>;  // by page, or by phrase
  // What a word of a question stands for: a term of the pages, and for which part of it.
  struct Meaning {
    std::string term;
    double part = 1;
  };
  using Meanings = std::vector<Meaning>;
  // A title, a keyword or a question of a page, with what its words weigh.
  struct Phrase {
    std::size_t page = 0;
    double weight = 0;
  };
  struct Term {
    Weights pages;
    Weights phrases;
    Weights asked;                      // how many of a page's phrases are this term; then what it says for the page
    std::vector<std::string> concepts;  // what it is one word of several for
    bool isWord = false;                // and no pair of neighbours
    double rarity = 0;                  // what stands on few pages tells more than what stands on all
  };

  void AddConcepts();
  void AddPage(const HelpBook& book, const HelpBook::Entry& entry);
  void AddField(std::string_view text, double weight, double usual, std::size_t page);
  void AddPhrases(std::string_view list, char separator, std::size_t page);
  [[nodiscard]] std::vector<std::string> WithConcepts(std::vector<std::string> terms) const;
  void WeighTerms();
  void WeighAsked();

  [[nodiscard]] Meanings Look(const std::string& word, std::vector<std::string>& taken) const;
  [[nodiscard]] Meanings LookAsItIs(const std::string& word) const;
  void AddMeaning(const std::string& term, double part, Meanings& meanings) const;
  void AddPieces(const std::string& word, Meanings& meanings) const;
  [[nodiscard]] std::vector<std::string> NearlySpelt(const std::string& word) const;
  [[nodiscard]] Weights Weigh(const Meanings& meanings, Weights Term::* where) const;
  [[nodiscard]] double MostOf(const Meanings& meanings) const;
  void AddNearest(const std::vector<Meanings>& asked, std::vector<double>& scores) const;
  void AddOdds(const std::vector<Meanings>& asked, std::vector<double>& scores) const;
  [[nodiscard]] double PartOf(const std::string& term) const;

  std::vector<Hit> mPages;
  std::vector<Phrase> mPhrases;
  std::vector<double> mNotAsked;  // by page: its phrases, and then what a term says that is in none of them
  std::map<std::string, Term, std::less<>> mTerms;
};

}  // namespace kv
