// Hundreds of thousands of exchanges on lines on which everything goes wrong at random.
//
// KV_LONG_RUN is the number of exchanges when it is set; a run is replayed with the seed that it prints, in KV_SEED.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <utility>

#include "Requests.h"
#include "base/Numbers.h"
#include "tests/support/HeldMemory.h"

namespace kv::matrix {
namespace {

using namespace std::chrono_literals;

std::int64_t FromEnvironment(const char* name, std::int64_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr ? ParseInteger(text).value_or(otherwise) : otherwise;
}

constexpr std::int64_t kUsualExchanges = test::kIsSanitized ? 50'000 : 200'000;

// A line and how bad it is. Power failures are rare on one of each model's, so that counters go around.
struct Weather {
  const char* name;
  int share;  // of the exchanges, in hundredths
  std::vector<std::string> faults;
};

const Weather kWeathers[] = {
    {"rough",
     40,
     {"noreply:p=0.01",
      "late:ms=30,p=0.01",
      "late:ms=400,p=0.005",
      "late:ms=3500,p=0.0005",
      "double:p=0.01",
      "dribble:ms=1,p=0.003",
      "dribble:ms=40,p=0.0002",
      "cut:after=11,p=0.01",
      "damage:p=0.01",
      "damage:chars=4,p=0.005",
      "damage:rate=0.0005",
      "damage:dir=in,p=0.01",
      "damage:dir=in,rate=0.002",
      "wrongunit:p=0.005",
      "echo:p=0.01",
      "garbage:bytes=200,p=0.005",
      "garbage:p=0.0001",
      "busy:p=0.002",
      "refuse:code=04,p=0.001",
      "lie:p=0.001",
      "reset:p=0.001",
      "lost:p=0.001",
      "lost:at=9,p=0.001",
      "lost:dir=in,p=0.001",
      "lost:at=3,away=900,p=0.001"}},
    {"storm",
     20,
     {"noreply:p=0.1", "late:ms=150,p=0.1", "double:p=0.1", "cut:after=15,p=0.1", "damage:chars=2,p=0.1",
      "damage:dir=in,p=0.1", "wrongunit:p=0.1", "echo:p=0.1", "garbage:bytes=60,p=0.1", "busy:p=0.02", "reset:p=0.02",
      "lost:at=9,p=0.02", "lost:dir=in,p=0.02", "lost:away=300,p=0.02"}},
    {"fair", 40, {"noreply:p=0.005", "late:ms=100,p=0.005", "double:p=0.005", "damage:p=0.005", "reset:p=0.00002"}},
};

class Voyage {
 public:
  Voyage(const std::string& model, const Weather& weather, std::uint64_t seed)
      : mBench(model, seed), mChance(static_cast<std::uint32_t>(seed)) {
    for (const Request& request : AllRequests()) {
      const bool isBlock = std::string_view(request.on) == "block";
      if (!isBlock || mBench.controller->UnderstandsBlocks()) mRequests.push_back(&request);
    }
    EXPECT_TRUE(mBench.simulated->UseFaults(weather.faults));
  }

  void Exchange() {
    const Request& request = *mRequests[mChance() % mRequests.size()];
    if (mChance() % 8 == 0) mBench.pacer.Sleep(mChance() % 2000 * 1ms);
    mBench.controller->ForgetCounts();
    if (mChance() % 100 == 0) StopSoon();
    const int calls = mBench.CallsBefore() + request.pieces;
    const Instant start = mBench.pacer.Now();
    const Attempt attempt = request.run(mBench);
    const Instant end = mBench.pacer.Now();
    ++mStopNumber;  // one that has not come yet is not meant for the next exchange
    const bool wasStopped = mBench.pacer.StopRequested();
    mBench.pacer.ClearStop();

    mWrong += attempt.isRight || mBench.controller->HasLied() ? 0 : 1;
    mDouble += request.isOnce && attempt.executions > 1 ? 1 : 0;
    mLate += end - start > mBench.Longest(calls, start, attempt.restarts) ? 1 : 0;
    mLate += wasStopped && end - mStopped > 200ms ? 1 : 0;
    mDone += attempt.isDone ? 1 : 0;
    mInARow = attempt.isDone ? 0 : mInARow + 1;
    // Only a line that is jammed for good, or one that carries thousands of bytes with a pause before each, lasts so
    // long.
    if (mInARow == 10) mBench.Reopen();
    if (attempt.restarts) mBench.pacer.Sleep(300ms);
    if (HasFailed() && !std::exchange(mHasTold, true)) Tell(request, start);
    ++mCount;
  }

  [[nodiscard]] bool HasFailed() const { return mWrong + mDouble + mLate > 0; }
  [[nodiscard]] int Percent() const { return static_cast<int>(100 * mDone / std::max<std::int64_t>(mCount, 1)); }
  [[nodiscard]] std::string Text() const {
    return std::to_string(mCount) + " exchanges, " + std::to_string(Percent()) + " % done, " + std::to_string(mWrong) +
           " wrong, " + std::to_string(mDouble) + " done twice, " + std::to_string(mLate) + " late";
  }

 private:
  // What passed on the line before the first failure.
  void Tell(const Request& request, Instant start) {
    constexpr std::size_t kMost = 30000;
    const std::string trace = mBench.driver.GetTrace().Text();
    ADD_FAILURE() << request.name << " in exchange " << mCount << ", " << start.time_since_epoch().count() << " to "
                  << mBench.pacer.Now().time_since_epoch().count() << " us\n"
                  << trace.substr(trace.size() - std::min(trace.size(), kMost));
  }

  void StopSoon() {
    mBench.pacer.After(mChance() % 1000 * 1ms, [this, number = mStopNumber] {
      if (number != mStopNumber) return;
      mStopped = mBench.pacer.Now();
      mBench.pacer.RequestStop();
    });
  }

  Bench mBench;
  std::mt19937 mChance;
  std::vector<const Request*> mRequests;
  std::int64_t mCount = 0;
  std::int64_t mDone = 0;
  std::int64_t mWrong = 0;
  std::int64_t mDouble = 0;
  std::int64_t mLate = 0;
  int mInARow = 0;
  int mStopNumber = 0;
  Instant mStopped{};
  bool mHasTold = false;
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
      for (std::int64_t i = 0; i < count / 4; ++i) run.Exchange();
      const std::int64_t held = test::MemoryHeld();
      for (std::int64_t i = count / 4; i < count; ++i) run.Exchange();
      EXPECT_LT(test::MemoryHeld() - held, 1 << 20) << "memory grows";
      std::cout << model << ", " << weather.name << ": " << run.Text() << "\n";
      EXPECT_FALSE(run.HasFailed());
      EXPECT_GE(run.Percent(), 50);
    }
  }
}

}  // namespace
}  // namespace kv::matrix
