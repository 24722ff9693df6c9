// One keystroke of the search in the help: a help with twice as many pages as ours, of two hundred words each.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "help/HelpSearch.h"

namespace kv {
namespace {

constexpr int kPages = 100;
constexpr int kWords = 200;

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
      text = "<body>";
      for (int word = 0; word < kWords; ++word) {
        text += "word" + std::to_string(word * std::atoi(std::string(name).c_str()) % 997) + " ";
      }
      text += "</body>";
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

}  // namespace
}  // namespace kv
