// Drawing of a controller's screen at 800 x 480: a page of 240 items, of which 60 change at once. Without arguments, in
// a release build, it ends with 1 when these take longer than they may; with the test's short run nothing is judged.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "KvTele2/panel/Drawing.h"
#include "base/LittleEndian.h"

namespace kv::panel {
namespace {

std::string Words(std::initializer_list<int> numbers) {
  std::string bytes;
  for (const int number : numbers) AppendLittleEndian(bytes, static_cast<std::uint16_t>(number));
  return bytes;
}

// A font of 16 rows whose characters are all full.
std::string FullFont() {
  std::string font = std::string("KFNT\x02\x10\x0C", 7) + ' ' + Words({200}) + std::string(200, '\x08');
  return font + std::string(200 * std::size_t{16}, '\xFF');
}

PanelRecord Item(int number, int colour) {
  const int x = number % 12 * 64;
  const int y = number / 12 * 24;
  const auto slot = static_cast<std::uint16_t>(64 + number);
  switch (number % 4) {
    case 0:
      return {slot, 16, Words({x, y, 60, 20, colour})};
    case 1:
      return {slot, 17, Words({x, y, 60, 20}) + '\x02' + Words({colour, 7})};
    case 2:
      return {slot, 21, Words({x, y, 60, 20}) + '\0' + Words({5000, colour, 7})};
    default:
      return {slot, 19, Words({x, y, 60, 1, colour, 0}) + '\x04' + "1234567"};
  }
}

PanelChanges Told(std::vector<PanelRecord> records, std::uint32_t before) {
  PanelChanges changes;
  changes.upTo = {1, before + static_cast<std::uint32_t>(records.size())};
  changes.records = std::move(records);
  return changes;
}

void Draw(benchmark::State& state, int changed, bool isPage) {
  ScreenResources resources;
  ScreenModel model({.kind = PanelKind::Colour, .width = 800, .height = 480, .pages = 1});
  Drawing drawing(model, resources);
  if (!resources.Add(PanelResourceKind::Font, 1, FullFont())) std::abort();
  std::vector<PanelRecord> page = {{0, 1, Words({1, 0x1234})}};
  for (int number = 0; number < 240; ++number) page.push_back(Item(number, 0xFFFF));
  if (!model.Take(Told(page, 0))) std::abort();
  (void)drawing.Draw();
  int colour = 0;
  for (auto _ : state) {
    std::vector<PanelRecord> records;
    if (isPage) records.push_back(page.front());
    ++colour;
    for (int i = 0; i < changed; ++i) records.push_back(Item(i * 240 / changed + i % 3, colour & 0xFFFF));
    const auto delta = model.Take(Told(std::move(records), model.Revision().number));
    if (!delta) std::abort();
    drawing.Note(*delta);
    benchmark::DoNotOptimize(drawing.Draw());
  }
}

constexpr double kMostOfSixty = 2000;  // microseconds of the processor

// Prints as usual, and judges.
class Judge final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_name.function_name == "Draw/SixtyItems") mSixty = run.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  [[nodiscard]] bool IsGood() const { return mSixty > 0 && mSixty <= kMostOfSixty; }

 private:
  double mSixty = 0;
};

BENCHMARK_CAPTURE(Draw, OneItem, 1, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Draw, SixtyItems, 60, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Draw, APage, 240, true)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kv::panel

int main(int argc, char** argv) {
  const bool isJudged = argc == 1;
  benchmark::Initialize(&argc, argv);
  kv::panel::Judge judge;
  benchmark::RunSpecifiedBenchmarks(&judge);
  if (!isJudged || judge.IsGood()) return 0;
  std::printf("60 changed items take longer than %.0f us\n", kv::panel::kMostOfSixty);
  return 1;
}
