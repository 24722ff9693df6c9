// Clones over a line that does everything wrong at once, by seed: each create and each restore with its verify ends
// right or with a plain failure that names the place. What the controller really holds is asked past the line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "MatrixBench.h"
#include "base/Numbers.h"
#include "clone/CloneVerify.h"
#include "clone/clsDumpPLC.h"
#include "tests/base/TemporaryFolder.h"
#include "tests/support/SilentCloner.h"

namespace kv::matrix {
namespace {

using namespace std::chrono_literals;
using ::testing::ContainsRegex;

constexpr const char* kModel = "AurexQ50";
constexpr std::int64_t kUsualSeeds = 20;
constexpr std::int64_t kLongSeeds = 1000;

const std::vector<std::string> kRough = {"damage:rate=0.001", "damage:dir=in,rate=0.001", "noreply:p=0.05",
                                         "double:p=0.01",     "late:ms=700,p=0.01",       "lie:on=WD,p=0.001"};
// Hardly a restore gets through the above, for it repeats nothing. Through this most do, and some of them are wrong.
const std::vector<std::string> kDeceitful = {"damage:dir=in,chars=2,on=WD,p=0.0002", "double:p=0.01",
                                             "late:ms=700,p=0.01", "lie:on=WD,p=0.003"};

struct Segment {
  char letter;
  std::uint32_t start;
  std::uint32_t length;
};
constexpr Segment kSegments[] = {{'R', 0x00100000, 0x0612}, {'R', 0x00110000, 0x0A36}, {'F', 0x00200000, 0x00D2},
                                 {'F', 0x00210000, 0x0C4A}, {'R', 0x00220000, 0x0156}, {'F', 0x00300000, 0x4E3A},
                                 {'F', 0x00400000, 0x251E}};

std::string MemoryOf(Bench& bench) {
  std::string memory;
  for (const Segment& segment : kSegments) {
    for (std::uint32_t done = 0; done < segment.length;) {
      const std::uint32_t count = std::min<std::uint32_t>(4096, segment.length - done);
      memory +=
          bench.TellBlock({.opCode = 257, .param1 = segment.start + done, .dataLength = count, .payload = {}}).payload;
      done += count;
    }
  }
  return memory;
}

// The memory that the lines of a clone file stand for, read by code of its own.
std::string MemoryOf(const std::string& content) {
  std::string memory;
  for (const Segment& segment : kSegments) {
    std::string bytes(segment.length, '\xFF');
    for (std::size_t at = content.find("/01WD"); at != std::string::npos; at = content.find("/01WD", at + 1)) {
      const std::uint32_t offset = ParseHex(content.substr(at + 6, 8)).value() - segment.start;
      if (offset >= segment.length) continue;
      const std::uint32_t count = (ParseHex(content.substr(at + 14, 2)).value() + 255) % 256 + 1;
      const std::uint32_t swap = content[at + 5] == 'F' ? 1 : 0;
      for (std::uint32_t i = 0; i < count; ++i) {
        bytes[offset + (i ^ swap)] =
            static_cast<char>(ParseHex(content.substr(at + 16 + std::size_t{2} * i, 2)).value());
      }
    }
    memory += bytes;
  }
  return memory;
}

struct Counts {
  int created = 0;
  int restored = 0;
  int deceived = 0;  // restores that said "Successfully" and were not
  int verified = 0;

  [[nodiscard]] std::string Text() const {
    return std::to_string(created) + " created, " + std::to_string(restored) + " restored, " +
           std::to_string(deceived) + " of these wrong and found out, " + std::to_string(verified) + " verified";
  }
};

class CloneRun {
 public:
  CloneRun(std::uint64_t seed, Counts& counts) : mSeed(seed), mCounts(counts) { mPrompts.password = Bench::kPassword; }

  void Create() {
    Bench bench(kModel, mSeed);
    const std::string held = MemoryOf(bench);
    EXPECT_TRUE(bench.simulated->UseFaults(kRough));
    const CloneOutcome outcome = Create(bench);
    mCounts.created += outcome.end == CloneEnd::Done ? 1 : 0;
    Judge(outcome);
    EXPECT_EQ(std::filesystem::exists(mFile), outcome.end == CloneEnd::Done);
    if (outcome.end != CloneEnd::Done) return;
    EXPECT_TRUE(MemoryOf(TemporaryFolder::Content(mFile)) == held) << "a wrong byte";
  }

  void RestoreAndVerify(const std::vector<std::string>& faults) {
    Bench source(kModel, mSeed);
    ASSERT_EQ(Create(source).end, CloneEnd::Done);
    Bench bench(kModel, mSeed + 1'000'000);
    ASSERT_NE(bench.Link(), nullptr);  // gives access
    EXPECT_TRUE(bench.simulated->UseFaults(faults));
    clsDumpPLC engine(mWindow, mPrompts, bench.pacer, bench.pacer);
    engine.RestoreGhost(*bench.Link()->GetSerialPort(), mFile, bench.Link());
    Judge(engine.Outcome());
    const bool isRestored = engine.Outcome().end == CloneEnd::Done;
    const bool isSame = MemoryOf(bench) == MemoryOf(TemporaryFolder::Content(mFile));
    mCounts.restored += isRestored ? 1 : 0;
    mCounts.deceived += isRestored && !isSame ? 1 : 0;
    Verify(bench, isSame);
  }

 private:
  CloneOutcome Create(Bench& bench) {
    const auto link = bench.driver.GetChannel();
    clsDumpPLC engine(mWindow, mPrompts, bench.pacer, bench.pacer);
    engine.CreateGhost(*link, mFile);
    return engine.Outcome();
  }

  // A failure says what was being done, and where.
  void Judge(const CloneOutcome& outcome) const {
    if (outcome.end == CloneEnd::Done) return;
    EXPECT_EQ(outcome.end, CloneEnd::Failed);
    EXPECT_THAT(outcome.reason, ContainsRegex("Line [0-9]+ of the clone file|failed: "));
  }

  // It may fail too, as plainly; but what it says is so.
  void Verify(Bench& bench, bool isSame) {
    bench.pacer.Sleep(1s);  // the controller may be restarting
    for (int attempt = 0; attempt < 3; ++attempt) {
      const auto found = VerifyClone(*bench.Link(), mFile);
      if (!found) {
        Judge(found.error());
        continue;
      }
      EXPECT_EQ(found->IsSame(), isSame);
      ++mCounts.verified;
      return;
    }
  }

  std::uint64_t mSeed;
  Counts& mCounts;
  TemporaryFolder mFolder;
  std::filesystem::path mFile = mFolder.Path() / "plc.kdf";
  test::SilentCloner mWindow;
  test::KnowingPrompts mPrompts;
};

TEST(CloneRun, EndsRightOrWithAPlainFailure) {
  const char* seeds = std::getenv("KV_LONG_RUN");
  const std::int64_t count = seeds != nullptr ? kLongSeeds : kUsualSeeds;
  Counts counts;
  for (std::int64_t seed = 1; seed <= count; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    CloneRun run(static_cast<std::uint64_t>(seed), counts);
    run.Create();
    run.RestoreAndVerify(kRough);
    run.RestoreAndVerify(kDeceitful);
  }
  std::cout << count << " seeds: " << counts.Text() << "\n";
  EXPECT_GT(counts.created, 0);
  EXPECT_GT(counts.deceived, 0);
  EXPECT_GT(counts.verified, count);
}

}  // namespace
}  // namespace kv::matrix
