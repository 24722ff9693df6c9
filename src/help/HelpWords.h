#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// The words of a text in small letters and in the form in which they are compared: "downloads" and "downloading" as
// "download". `withSmall`: also "the", "how" and the like.
[[nodiscard]] std::vector<std::string> WordsOf(std::string_view text, bool withSmall);

// Those of a question that a page has to have, if it is to have all: without "where", "still" and the like, too.
[[nodiscard]] std::set<std::string> MainWordsOf(std::string_view text);

// Each pair of neighbours as one word: "log in" and "login" are the same to one who looks for them, and a pair in
// common says more than its words apart.
[[nodiscard]] std::vector<std::string> PairsOf(std::string_view text);

// The words and the pairs.
[[nodiscard]] std::vector<std::string> TermsOf(std::string_view text, bool withSmall);

// How many letters have to be inserted, left out, replaced or exchanged with the next one; more than `most` is most
// + 1.
[[nodiscard]] std::size_t Distance(std::string_view a, std::string_view b, std::size_t most);

// Whether two words in the form above are of one family: "install" and "installat". Most of their letters are a
// common beginning, and so many at least.
inline constexpr std::size_t kLettersOfAkin = 5;
[[nodiscard]] bool AreAkin(std::string_view a, std::string_view b);

}  // namespace kv
