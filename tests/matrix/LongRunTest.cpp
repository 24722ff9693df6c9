// Tens of thousands of exchanges on lines on which everything goes wrong at random.
//
// KV_LONG_RUN is the number of exchanges when it is set; a run is replayed with the seed that it prints, in KV_SEED.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>

#include "Requests.h"
#include "base/Numbers.h"
#include "tests/support/HeldMemory.h"
#include "tests/support/Recorded.h"
#include "tests/support/WeatherSeeds.h"

namespace kv::matrix {
namespace {

using namespace std::chrono_literals;

std::int64_t FromEnvironment(const char* name, std::int64_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr ? ParseInteger(text).value_or(otherwise) : otherwise;
}

constexpr std::int64_t kUsualExchanges = test::kIsSanitized ? 10'000 : 40'000;

// A line and how bad it is. Power failures are rare on one of each model's, so that counters go around.
struct Weather {
  const char* name;
  int share;  // of the exchanges, in hundredths
  int least;  // of a hundred that get through; on a rough line it is a matter of where the line is jammed
  std::vector<std::string> faults;
};

const Weather kWeathers[] = {
    {"rough", 40, 33, test::kRoughWeather},
    {"storm",
     20,
     50,
     {"noreply:p=0.1", "late:ms=150,p=0.1", "double:p=0.1", "cut:after=15,p=0.1", "damage:chars=2,p=0.1",
      "damage:dir=in,p=0.1", "wrongunit:p=0.1", "echo:p=0.1", "garbage:bytes=60,p=0.1", "busy:p=0.02", "reset:p=0.02",
      "lost:at=9,p=0.02", "lost:dir=in,p=0.02", "lost:away=300,p=0.02"}},
    {"fair", 40, 95, {"noreply:p=0.005", "late:ms=100,p=0.005", "double:p=0.005", "damage:p=0.005", "reset:p=0.00002"}},
};

// What became of the exchanges of one controller on one line.
struct Voyage {
  Voyage(const std::string& model, const Weather& weather, std::uint64_t seed)
      : fixture(model, seed), chance(static_cast<std::uint32_t>(seed)) {
    for (const Request& request : AllRequests()) {
      const bool isBlock = std::string_view(request.on) == "block";
      if (!isBlock || fixture.controller->UnderstandsBlocks()) requests.push_back(&request);
    }
    EXPECT_TRUE(fixture.simulated->UseFaults(weather.faults));
  }

  // False when it went wrong.
  bool Exchange() {
    const Request& request = *requests[chance() % requests.size()];
    if (chance() % 8 == 0) fixture.pacer.Sleep(chance() % 2000 * 1ms);
    const Attempt attempt = RunJudged(fixture, request);
    done += attempt.isDone ? 1 : 0;
    inARow = attempt.isDone ? 0 : inARow + 1;
    // Only a line that is jammed for good, or one that carries thousands of bytes with a pause before each, lasts so
    // long.
    if (inARow == 10) fixture.Reopen();
    return !testing::Test::HasFailure();
  }
  // What passed on the line before the failure.
  [[nodiscard]] std::string TraceEnd() {
    const std::string trace = fixture.driver.GetTrace().Text();
    return trace.substr(trace.size() - std::min<std::size_t>(trace.size(), 30000));
  }

  Fixture fixture;
  std::mt19937 chance;
  std::vector<const Request*> requests;
  std::int64_t done = 0;
  int inARow = 0;  // that failed
};

TEST(LongRun, NothingWrongNothingTwiceNothingLate) {
  const std::int64_t exchanges = FromEnvironment("KV_LONG_RUN", kUsualExchanges);
  const auto seed = static_cast<std::uint64_t>(FromEnvironment("KV_SEED", std::random_device{}() % 1'000'000));
  std::cout << "KV_SEED=" << seed << "\n";
  for (const char* model : {"K220-22-R1", "K670-T40", "Q50", "K450-45"}) {
    for (const Weather& weather : kWeathers) {
      SCOPED_TRACE(std::string(model) + ", " + weather.name);
      const std::int64_t count = exchanges / 4 * weather.share / 100;
      Voyage run(model, weather, seed);
      std::int64_t held = 0;
      for (std::int64_t i = 0; i < count; ++i) {
        if (i == count / 4) held = test::MemoryHeld();
        ASSERT_TRUE(run.Exchange()) << i << "\n" << run.TraceEnd();
      }
      EXPECT_LT(test::MemoryHeld() - held, 1 << 20) << "memory grows";
      EXPECT_GE(100 * run.done, weather.least * count);
    }
  }
}

// What each exchange came to, and after which time, stands in the record: with one seed it is the same again.
TEST(LongRun, IsTheSameAgain) {
  const Weather weather{
      "",
      0,
      0,
      {"noreply:p=0.1", "late:ms=150,p=0.1", "late:ms=1200,p=0.03", "double:p=0.1", "cut:after=4,p=0.05",
       "wrongunit:p=0.05", "echo:p=0.05", "busy:p=0.03", "refuse:code=09,p=0.02", "reset:p=0.01", "lost:at=2,p=0.03",
       "lost:dir=in,p=0.03", "lost:away=700,p=0.02"}};
  for (const char* model : {"K220-22-R1", "Q50"}) {
    Voyage run(model, weather, 7);
    std::string told;
    for (int i = 0; i < 300; ++i) {
      const Instant start = run.fixture.pacer.Now();
      const std::int64_t before = run.done;
      ASSERT_TRUE(run.Exchange()) << i << "\n" << run.TraceEnd();
      told += std::to_string((run.fixture.pacer.Now() - start).count()) + " ";
      Channel* link = run.fixture.Link();
      told += run.done > before ? "done"
              : link != nullptr ? link->LastError().Text()
                                : run.fixture.driver.LastError().Text();
      if (link != nullptr) told += ", " + std::to_string(link->Quality().repeats) + " repeats";
      told += "\n";
    }
    test::ExpectAsRecorded([&told] { return told; });
  }
}

}  // namespace
}  // namespace kv::matrix
