#include <gmock/gmock.h>

#include "KvTele2/panel/Rhythm.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;

// Block messages on a serial line of this speed.
PanelLinkCost CostAt(int baud) {
  const Duration byte = 10'000'000us / baud;
  return {byte, 90 * byte, 8192};
}

TEST(Rhythm, APieceTakesAtMostFiftyMillisecondsOrTheLeastThereIs) {
  EXPECT_EQ(Rhythm({0us, 0us, 8192}).Piece(), 8192);
  EXPECT_EQ(Rhythm({0us, 0us, 512}).Piece(), 512);
  const std::uint16_t at115200 = Rhythm(CostAt(115200)).Piece();
  EXPECT_LE(CostAt(115200).perRequest + at115200 * CostAt(115200).perByte, 50ms);
  EXPECT_GT(at115200, 400);
  EXPECT_EQ(Rhythm(CostAt(9600)).Piece(), 100);
}

TEST(Rhythm, IsFastAfterChangesAndInputAndSlowWhenStill) {
  Rhythm rhythm({0us, 0us, 8192});
  Instant now{};
  rhythm.NoteLook(now);
  const auto ask = [&](std::size_t bytes, bool hasMore = false) {
    now = std::max(now, rhythm.NextAsk());
    rhythm.NoteAnswer(now, now + 1ms, bytes, hasMore);
    return rhythm.NextAsk() - now;
  };
  EXPECT_EQ(ask(500, true), 1ms) << "the rest comes at once";
  EXPECT_EQ(ask(500), 33ms);
  const Instant changed = now;
  while (ask(0) == 33ms) EXPECT_LT(now - changed, 1100ms);
  EXPECT_GE(now - changed, 950ms);
  for (int i = 0; i < 4; ++i) (void)ask(0);
  EXPECT_EQ(ask(0), 500ms);
  rhythm.NoteInput(now);
  EXPECT_EQ(rhythm.NextAsk() - now, 33ms);
  EXPECT_EQ(ask(20), 33ms);
  rhythm.NoteFailure(now);
  EXPECT_EQ(rhythm.NextAsk() - now, 500ms);
}

TEST(Rhythm, LeavesHalfOfASlowLineToOthers) {
  for (const int baud : {9600, 19200, 115200}) {
    Rhythm rhythm(CostAt(baud));
    Instant now{};
    Duration busy{};
    rhythm.NoteLook(now);
    while (now < Instant{} + 10s) {
      now = std::max(now, rhythm.NextAsk());
      const Duration takes = CostAt(baud).perRequest + 40 * CostAt(baud).perByte;
      busy += takes;
      rhythm.NoteAnswer(now, now + takes, 40, false);
      now += takes;
    }
    EXPECT_LE(2 * busy, 10s + 300ms) << baud;
  }
  // A panel that stands still takes 2 % of the usual line.
  const Duration still = CostAt(115200).perRequest;
  EXPECT_LE(still * 50, Rhythm::kStill);
}

TEST(Rhythm, APieceFollowsALineThatIsSlowerThanItSays) {
  Rhythm rhythm({0us, 0us, 8192});
  rhythm.NoteAnswer(Instant{}, Instant{} + 800ms, 8000, true);
  EXPECT_EQ(rhythm.Piece(), 4096);
  for (int i = 0; i < 9; ++i) rhythm.NoteAnswer(Instant{}, Instant{} + 800ms, 4000, true);
  EXPECT_EQ(rhythm.Piece(), 100);
  for (int i = 0; i < 9; ++i) rhythm.NoteAnswer(Instant{}, Instant{} + 5ms, 8000, true);
  EXPECT_EQ(rhythm.Piece(), 8192);
}

}  // namespace
}  // namespace kv::panel
