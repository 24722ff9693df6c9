#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "help/HelpBook.h"

namespace kv {

// Finds pages by the words of their users: a page has all words of the question, as they are, in another form, or as
// the beginning of a longer one. Title and synonyms count more than the text, and the word itself more than its
// beginning; a title or synonym that reads like the question counts most. What others say for a word counts, too. A
// word that stands nowhere is taken for those that it is nearly spelt like. Where few pages have all words, those with
// the most follow.
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
    std::size_t complete = 0;        // so many of them, the first, have all words
    std::vector<std::string> taken;  // what was taken instead of words that stand nowhere: "modem" for "modme"
  };
  [[nodiscard]] Answer Find(std::string_view question) const;

 private:
  static constexpr std::size_t kMostHits = 30;
  static constexpr std::size_t kFewHits = 5;

  using Weights = std::map<std::size_t, double>;  // by page
  struct Match {
    Weights weights;
    std::vector<std::string> taken;
  };
  struct Page {
    Hit hit;
    std::vector<std::vector<std::string>> phrases;  // its title and synonyms, in words
  };

  void Add(std::string_view text, double weight, std::size_t page);
  void AddSynonyms();
  void AddMatches(const std::string& stem, double part, Weights& weights) const;
  [[nodiscard]] Match Look(const std::string& stem) const;
  [[nodiscard]] std::vector<std::string> NearlySpelt(const std::string& stem) const;

  std::vector<Page> mPages;
  std::map<std::string, Weights> mWords;
  std::map<std::string, std::vector<std::string>> mSynonyms;
};

// The words of a text in small letters and in the form in which they are compared: "downloads" and "downloading" as
// "download". `withSmall`: also "the", "how" and the like.
[[nodiscard]] std::vector<std::string> WordsOf(std::string_view text, bool withSmall);

}  // namespace kv
