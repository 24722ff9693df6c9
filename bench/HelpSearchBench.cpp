// One keystroke of the search in the help, and what its index takes: a help with twice as many pages as ours, of two
// hundred words and twenty questions each.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "help/HelpSearch.h"

namespace kv {
namespace {

constexpr int kPages = 100;
constexpr int kWords = 200;
constexpr int kQuestions = 20;
constexpr int kWordsOfQuestion = 4;

class MadeUpHelp final : public HelpSource {
 public:
  [[nodiscard]] std::vector<std::string> Names() const override { return {}; }
  [[nodiscard]] std::optional<std::string> Read(std::string_view name) const override {
    std::string text;
    if (name == "contents.hhc") {
      text = "<UL>";
      for (int page = 0; page < kPages; ++page) {
        const std::string number = std::to_string(page);
        text += "<OBJECT><param name=\"Name\" value=\"Page " + number + "\"><param name=\"Local\" value=\"" + number +
                "\"></OBJECT>";
      }
    } else {
      const int page = std::atoi(std::string(name).c_str());
      const auto words = [page](int count, int factor, int inPhrase) {
        std::string all;
        for (int word = 0; word < count; ++word) {
          all += "word" + std::to_string(word * factor * page % 997) + (word % inPhrase == inPhrase - 1 ? "; " : " ");
        }
        return all;
      };
      text = "<meta name=\"questions\" content=\"" + words(kQuestions * kWordsOfQuestion, 7, kWordsOfQuestion) +
             "\"><body>" + words(kWords, 1, kWords) + "</body>";
    }
    return text;
  }
};

void Keystroke(benchmark::State& state, const char* question) {
  const HelpBook book(std::make_unique<MadeUpHelp>());
  const HelpSearch search(book);
  for (auto _ : state) benchmark::DoNotOptimize(search.Find(question));
}
BENCHMARK_CAPTURE(Keystroke, Word, "word12");
BENCHMARK_CAPTURE(Keystroke, Beginning, "w");
BENCHMARK_CAPTURE(Keystroke, Question, "page word1 word22 word333");
BENCHMARK_CAPTURE(Keystroke, NearlySpelt, "wodr997777 pgae");

void Index(benchmark::State& state) {
  const HelpBook book(std::make_unique<MadeUpHelp>());
  for (auto _ : state) benchmark::DoNotOptimize(HelpSearch(book));
  const std::size_t before = mallinfo2().uordblks;
  const HelpSearch search(book);
  state.counters["KiB"] = static_cast<double>(mallinfo2().uordblks - before) / 1024;
}
BENCHMARK(Index);

}  // namespace
}  // namespace kv
