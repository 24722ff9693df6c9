#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "clone/clsDumpPLC.h"
#include "desktop/PacerWallClock.h"
#include "desktop/console/ConsolePacer.h"
#include "journal/ChangeRecorder.h"
#include "journal/JournalCheck.h"
#include "sessions/SessionIni.h"
#include "tests/support/SilentCloner.h"

// A write of 60 operands and a restore, with the records of the change journal and without, in turn: the medians are
// compared. What a flush takes depends on the disk and on what else it does, so the same write with a bare append and
// flush before and behind it is measured in the same turn, and what the records of a write cost is told in those.

namespace bench {
namespace {

constexpr const char* kModel = "K220-22-R1";
constexpr int kOperands = 60;
constexpr double kMostOfWrite = 0.4;     // milliseconds: what two flushes of 0.17 ms and the records themselves take
constexpr double kMostOfRestore = 0.01;  // of its time
constexpr double kMostOfFlushes = 1.2;   // times two bare flushes, on a disk whose flushes alone take longer

struct Effort {
  int writes;
  int restores;
};
constexpr Effort kFull{400, 9};
constexpr Effort kOnce{2, 1};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Appends of a record's length with a flush each, in a file beside the journal.
class BareFlushes {
 public:
  explicit BareFlushes(const std::filesystem::path& folder)
      : mFile(kv::SystemJournalDisk().Open(folder / "flushes", kv::JournalDisk::Access::Replace)) {}

  bool Once() {
    const bool isDone = mFile && !(*mFile)->Write(mAt, mRecord) && !(*mFile)->Flush();
    mAt += mRecord.size();
    return isDone;
  }

 private:
  std::expected<std::unique_ptr<kv::JournalFile>, std::error_code> mFile;
  std::string mRecord = std::string(900, 'x');
  std::uint64_t mAt = 0;
};

class Bench {
 public:
  explicit Bench(const std::filesystem::path& home) : mShared(kv::ProgramPaths(home)) {
    // A session that was used has settings, and each operation asks them whether it wants a reason.
    std::filesystem::create_directories(home / "Sessions" / "Default");
    mIsGood = kv::SetLastModel(mShared, kModel).has_value();
    const std::string& ready = mKvsim.ReadyLine();
    kv::LinkSettings settings;
    settings.transport = kv::Transport::Tcp;
    settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
    mDriver.UseSettings(settings, false);
    mLink = mDriver.GetChannel();
  }
  [[nodiscard]] bool IsReady() const { return mLink != nullptr; }
  [[nodiscard]] kv::JournalPlaces Places() const {
    return {mShared.paths.Session("Default"), mShared.paths.Home() / "state"};
  }

  // Milliseconds: without records, what they take more, and what two bare flushes take more. The machine's moods last
  // longer than a turn, so what is more is held against the same turn.
  struct Figures {
    double without;
    double more;
    double flushes;
  };
  Figures Measure(int times, const std::function<void()>& change) {
    std::vector<double> without;
    std::vector<double> more;
    std::vector<double> flushes;
    BareFlushes bare(mShared.paths.Home());
    const auto timed = [](const auto& work) {
      const double start = ClockSeconds();
      work();
      return (ClockSeconds() - start) * 1000;
    };
    for (int i = 0; i < times; ++i) {
      mDriver.SetChangeObserver(nullptr);
      without.push_back(timed(change));
      flushes.push_back(timed([&] {
                          mIsGood = bare.Once() && mIsGood;
                          change();
                          mIsGood = bare.Once() && mIsGood;
                        }) -
                        without.back());
      mDriver.SetChangeObserver(&mRecorder);
      more.push_back(timed(change) - without.back());
    }
    return {Median(without), Median(more), Median(flushes)};
  }

  void Write() {
    std::vector<std::int16_t> values(kOperands);
    std::iota(values.begin(), values.end(), static_cast<std::int16_t>(mWrites++ % 1000));
    kv::Operation operation{.tool = "Operand view", .what = "write 1 region"};
    if (mLink->Changes()) {
      kv::ChangedOperands changed{"MI 0..59", {}, {}};
      for (const std::int16_t value : values) {
        changed.before.push_back(std::to_string(value - 1));
        changed.after.push_back(std::to_string(value));
      }
      operation.operands.push_back(std::move(changed));
    }
    const kv::OperationScope writing(mLink->Changes(), operation);
    mIsGood = mLink->WriteMI(0, values, 1) && mIsGood;
  }
  bool Create() {
    kv::clsDumpPLC engine(mWindow, mPrompts, mPacer, mClock);
    engine.CreateGhost(*mLink, mFile);
    return engine.Outcome().end == kv::CloneEnd::Done;
  }
  void Restore() {
    const kv::OperationScope restoring(mLink->Changes(), kv::RestoreOperation(mFile));
    kv::clsDumpPLC engine(mWindow, mPrompts, mPacer, mClock);
    engine.RestoreGhost(*mLink->GetSerialPort(), mFile, mLink.get());
    mIsGood = engine.Outcome().end == kv::CloneEnd::Done && mIsGood;
    mLines = engine.Reach().written;
  }
  [[nodiscard]] bool IsGood() {
    const kv::JournalCheck check = kv::CheckJournal(Places(), kv::SystemJournalDisk(), mPacer);
    if (!check.IsSound() || !check.openRecords.empty()) std::printf("%s\n", kv::VerdictText(check).c_str());
    return mIsGood && check.IsSound() && check.openRecords.empty() && check.records > 0;
  }
  [[nodiscard]] std::int64_t Lines() const { return mLines; }

 private:
  KvsimChild mKvsim{{"--model", kModel, "--tcp", "0"}};
  kv::ConsolePacer mPacer;
  kv::PacerWallClock mClock;
  kv::SharedState mShared;
  kv::test::SilentCloner mWindow{};
  kv::test::KnowingPrompts mPrompts{};
  kv::ChangeRecorder mRecorder{{.shared = mShared,
                                .stateFolder = mShared.paths.Home() / "state",
                                .disk = kv::SystemJournalDisk(),
                                .prompts = mPrompts,
                                .pacer = mPacer,
                                .clock = mClock,
                                .tell = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); },
                                .cure = {}}};
  kv::Driver mDriver{mPacer, {}, kv::MakePort};
  std::shared_ptr<kv::Channel> mLink;
  std::filesystem::path mFile = mShared.paths.Home() / "plc.kdf";
  int mWrites = 0;
  std::int64_t mLines = 0;
  bool mIsGood = true;
};

// Whether records take `most` milliseconds at most; a disk whose flushes alone take longer is held to these.
bool Tell(const Bench::Figures& figures, double most, double flushes) {
  const bool isSlowDisk = flushes > most;
  const double share = flushes > 0 ? figures.more / flushes : 0;
  const bool isGood = isSlowDisk ? share <= kMostOfFlushes : figures.more <= most;
  std::printf("  %.3f ms, recorded %.3f ms more (wanted %.3f at most); two bare flushes alone %.3f ms\n",
              figures.without, figures.more, most, flushes);
  if (isSlowDisk)
    std::printf("  more than is wanted, so held is: %.2f times them (wanted %.1f)", share, kMostOfFlushes);
  std::printf("%s\n", isGood ? "" : " <");
  return isGood;
}

bool Run(const std::filesystem::path& home, const Effort& effort) {
  Bench bench(home);
  if (!bench.IsReady()) return false;
  const Bench::Figures write = bench.Measure(effort.writes, [&] { bench.Write(); });
  std::printf("Write of %d operands:\n", kOperands);
  const bool isWriteGood = Tell(write, kMostOfWrite, write.flushes);
  const double own = write.more - write.flushes;
  std::printf("  of this the records themselves %.3f ms, %.0f %% over the flushes\n", own, 100 * own / write.flushes);
  if (!bench.Create()) return false;
  const Bench::Figures restore = bench.Measure(effort.restores, [&] { bench.Restore(); });
  std::printf("Restore of %lld lines, %.2f %% more (wanted %.0f at most):\n", static_cast<long long>(bench.Lines()),
              100 * restore.more / restore.without, 100 * kMostOfRestore);
  // The flushes of the many writes: a restore takes so long that theirs are lost in its own ups and downs.
  const bool isQuick = Tell(restore, kMostOfRestore * restore.without, write.flushes) && isWriteGood;
  return bench.IsGood() && (isQuick || effort.writes < kFull.writes);
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  const bool hasHome = argc > 2 && std::strcmp(argv[1], "--home") == 0;
  const std::filesystem::path base = hasHome ? argv[2] : std::filesystem::temp_directory_path();
  const std::filesystem::path home = base / ("journal-bench-" + std::to_string(::getpid()));
  const bool isGood = bench::Run(home, isOnce ? bench::kOnce : bench::kFull);
  std::filesystem::remove_all(home);
  return isGood ? 0 : 1;
}
