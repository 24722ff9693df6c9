// The view over the real driver and a simulated controller whose line misbehaves.
//
// One hour on line is simulated; with KV_LONG_RUN set it is a day. A run is replayed with the seed that it prints, in
// KV_SEED.

#include <cstdlib>
#include <iostream>
#include <random>

#include "base/Numbers.h"
#include "tests/dataview/DataViewBench.h"
#include "tests/matrix/MatrixBench.h"
#include "tests/support/HeldMemory.h"

namespace kv::test {
namespace {

using namespace std::chrono_literals;

constexpr const char* kModel = "K220-22-R1";

// The view's bench with the real driver's channel in place of the fake one.
struct LinkedView : DataViewBench {
  explicit LinkedView(std::uint64_t seed = 1) : DataViewBench(kModel), line(kModel, seed) {
    shared.ComDriver = &line.driver;
    EXPECT_NE(line.Link(), nullptr);  // gives the password, without which nothing may be written
    linked.Open();
  }

  // What the controller holds in MI 0 to 59 and ML 0 to 9 after so many changes.
  static std::int32_t Word(std::uint32_t change, std::int32_t address) {
    return static_cast<std::int16_t>(change * 61 + static_cast<std::uint32_t>(address) * 257);
  }
  static std::int32_t Long(std::uint32_t change, std::int32_t address) {
    return static_cast<std::int32_t>(change * 1000003U + static_cast<std::uint32_t>(address));
  }
  void Change(std::uint32_t change) {
    std::string words = "030000003C";
    for (std::int32_t i = 0; i < 60; ++i) AppendHex(words, static_cast<std::uint32_t>(Word(change, i)), 4);
    (void)line.TellOwn("WO", words);
    std::string longs = "050000000A";
    for (std::int32_t i = 0; i < 10; ++i) AppendHex(longs, static_cast<std::uint32_t>(Long(change, i)), 8);
    (void)line.TellOwn("WO", longs);
  }
  // Whether the row shows the controller as it was after that change.
  [[nodiscard]] bool Shows(std::size_t row, std::uint32_t change) const {
    const Region region = linked.Regions().Rows()[row].region;
    for (std::int32_t i = region.from; i <= region.to; ++i) {
      const std::int32_t value = region.type == MI ? Word(change, i) : Long(change, i);
      if (linked.Operands().Text(region.type, i) != std::to_string(value)) return false;
    }
    return true;
  }
  void Define(OperandTypeCode type, std::int32_t to) {
    linked.Select({.top = RowOfType(type), .left = 1, .bottom = RowOfType(type), .right = to + 1});
    linked.Run("ID_AddRegion");
  }

  matrix::Bench line;
  DataTypesView linked{{shared, prompts, line.pacer, clipboard, selector, line.pacer}, *this};
};

const std::vector<std::string> kFaults = {"noreply:p=0.002",    "late:ms=120,p=0.002",       "double:p=0.001",
                                          "damage:p=0.002",     "damage:dir=in,p=0.001",     "cut:after=15,p=0.001",
                                          "wrongunit:p=0.0005", "garbage:bytes=60,p=0.0005", "busy:p=0.0001"};

// The user: keeps the view on line, ten passes a second, and goes on line again when the mode has ended.
class Day {
 public:
  explicit Day(std::uint64_t seed) : mBench(seed) {
    mBench.Define(MI, 59);
    mBench.Define(ML, 9);
    mShownChange.assign(2, 0);
    UseFaults({});
    mBench.line.pacer.OnDoEvents([this] { BetweenPasses(); });
  }

  void OnlineFor(Duration span) {
    const Instant end = Now() + span;
    for (mEnd = end; Now() < end; mBench.line.pacer.Sleep(5s)) {
      NextChange();
      mBench.linked.Run("ID_OnLine");
      Judge();
      ++mTimesOnline;
    }
  }
  // The cable is out for a minute.
  void LoseLink() { UseFaults({"lost:nth=1,at=9,away=60000"}); }

  [[nodiscard]] std::string Text() const {
    return std::to_string(mPasses) + " passes, " + std::to_string(mTimesOnline) + " times on line, " +
           std::to_string(mWrong) + " wrong";
  }
  [[nodiscard]] int Wrong() const { return mWrong; }
  [[nodiscard]] int Passes() const { return mPasses; }

 private:
  [[nodiscard]] Instant Now() const { return mBench.line.pacer.Now(); }

  void UseFaults(std::vector<std::string> more) {
    more.insert(more.end(), kFaults.begin(), kFaults.end());
    EXPECT_TRUE(mBench.line.simulated->UseFaults(more));
  }
  void NextChange() {
    mBench.ForgetWhatWasTold();
    mBench.line.controller->ForgetCounts();
    mBench.Change(++mChange);
    mChangedAt = Now();
  }
  void BetweenPasses() {
    Judge();
    ++mPasses;
    mBench.line.pacer.Sleep(100ms - (Now() - mChangedAt) % 100ms);
    if (Now() >= mEnd) return mBench.linked.Run("ID_OnLine");
    NextChange();
  }
  // A row that says it was read since the last change shows that change; any other what it showed before.
  void Judge() {
    for (std::size_t row = 0; row < mShownChange.size(); ++row) {
      const auto readAt = mBench.linked.Regions().Rows()[row].readAt;
      if (!readAt) continue;
      if (*readAt >= mChangedAt) mShownChange[row] = mChange;
      if (!mBench.Shows(row, mShownChange[row])) ++mWrong;
    }
  }

  LinkedView mBench;
  std::vector<std::uint32_t> mShownChange;  // of each row
  std::uint32_t mChange = 0;
  Instant mChangedAt{};
  Instant mEnd{};
  int mPasses = 0;
  int mTimesOnline = 0;
  int mWrong = 0;
};

TEST(OnLine, ForADayOnABadLineShowsNothingWrongAndHoldsItsMemory) {
  const char* given = std::getenv("KV_SEED");
  const auto seed = given != nullptr ? ParseInteger(given).value_or(1) : std::random_device{}() % 1'000'000;
  std::cout << "KV_SEED=" << seed << "\n";
  const int parts = std::getenv("KV_LONG_RUN") != nullptr ? 24 : 4;
  const Duration part = parts == 24 ? Duration(1h) : Duration(15min);
  Day day(static_cast<std::uint64_t>(seed));
  std::int64_t held = 0;
  for (int i = 0; i < parts; ++i) {
    if (i == 1) held = MemoryHeld();
    day.OnlineFor(part);
    day.LoseLink();
  }
  std::cout << day.Text() << "; memory grew by " << (MemoryHeld() - held) / 1024 << " KiB after the first part\n";
  EXPECT_EQ(day.Wrong(), 0);
  EXPECT_GT(day.Passes(), parts * (part / 1s) * 9) << "ten a second, but for the lost links";
  EXPECT_LT(MemoryHeld() - held, 1 << 20) << "memory grows";
}

}  // namespace
}  // namespace kv::test
