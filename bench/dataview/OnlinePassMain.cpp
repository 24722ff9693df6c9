#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "dataview/OnlineMode.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewContext.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/PacerWallClock.h"
#include "desktop/ScriptedPrompts.h"
#include "desktop/console/ConsolePacer.h"
#include "editors/clsHexSelector.h"

// Time of one region in the on-line passes of the operand data view: 200 regions of 60 MI over TCP to kvsim in a
// process of its own. Beside it the driver's exchange alone, and two processes that pass as many bytes back and forth
// and do nothing else; all on one core, in turn.

namespace bench {
namespace {

using namespace kv::mdlDataTypesView;

constexpr const char* kModel = "K670-67-T40 / K390-29-T40";
constexpr int kRegions = 200;
constexpr std::int32_t kOperands = 60;
constexpr std::int32_t kPlaces = 4096 / kOperands;  // the model has no 12000 MI: some are read more than once
constexpr double kWanted = 1.2;

struct Effort {
  int rounds;  // the three take turns this often; medians count
  int passes;  // in one round
};
constexpr Effort kFull{15, 20};
constexpr Effort kOnce{1, 1};

// Nobody looks at the view.
struct Nobody final : GridListener, kv::HexSelectorWindow {
  void GridsChanged(const GridChanges&) override {}
  void StatusChanged() override {}
  std::optional<std::string> Edit(const std::string&) override { return std::nullopt; }
};

// A real clock, and between two passes whatever the bench wants.
class BenchPacer final : public kv::Pacer {
 public:
  std::function<void()> betweenPasses;

  [[nodiscard]] kv::Instant Now() const override { return mReal.Now(); }
  void Sleep(kv::Duration span) override { mReal.Sleep(span); }
  void DoEvents() override {
    if (betweenPasses) betweenPasses();
  }
  void Turn() override { mReal.Turn(); }
  [[nodiscard]] bool StopRequested() const override { return mReal.StopRequested(); }
  void RequestStop() override { mReal.RequestStop(); }
  void ClearStop() override { mReal.ClearStop(); }

 private:
  kv::ConsolePacer mReal;
};

class Bench {
 public:
  Bench() {
    const std::string& ready = mKvsim.ReadyLine();
    kv::LinkSettings settings;
    settings.transport = kv::Transport::Tcp;
    settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
    mDriver.UseSettings(settings, false);
    mChannel = mDriver.GetChannel();
    mShared.ComDriver = &mDriver;
    mContext.state.operands = OperandStore(kModel);
    std::vector<RegionRow> rows;
    for (std::int32_t i = 0; i < kRegions; ++i) {
      const std::int32_t from = i % kPlaces * kOperands;
      rows.push_back(NewRegionRow({.from = from, .to = from + kOperands - 1, .type = OperandTypeCode::MI}));
    }
    mContext.state.regions.Assign(std::move(rows));
  }

  [[nodiscard]] pid_t Partner() const { return mKvsim.Process(); }
  [[nodiscard]] kv::LinkQuality Quality() const { return mChannel->Quality(); }

  // One on-line mode of so many passes. The O/S check at its start is one exchange more.
  [[nodiscard]] bool GoOnline(int passes) {
    mPacer.betweenPasses = [&, rest = passes]() mutable {
      if (--rest == 0) mOnline.Stop();
    };
    mOnline.Run(OnlineMode::With::Any);
    return mContext.status.passes == static_cast<std::uint64_t>(passes);
  }
  [[nodiscard]] bool Exchange(int times) {
    bool isGood = mChannel != nullptr;
    for (int i = 0; i < times && isGood; ++i) {
      const kv::OperandListRequest request{.driverTypeCode = 3, .start = i % kPlaces * kOperands, .count = kOperands};
      isGood = mChannel->ReadOperandList(std::span(&request, 1), 1).has_value();
    }
    return isGood;
  }

 private:
  KvsimChild mKvsim{{"--model", kModel, "--tcp", "0"}};
  BenchPacer mPacer;
  kv::Driver mDriver{mPacer, {}, kv::MakePort};
  std::shared_ptr<kv::Channel> mChannel;
  kv::SharedState mShared{kv::ProgramPaths(std::filesystem::temp_directory_path())};
  kv::ScriptedPrompts mPrompts{[](const std::string& what) { std::fprintf(stderr, "%s\n", what.c_str()); }};
  kv::MemoryClipboard mClipboard;
  kv::PacerWallClock mClock;
  Nobody mNobody;
  kv::clsHexSelector mSelector{mNobody};
  ViewContext mContext{{mShared, mPrompts, mPacer, mClipboard, mSelector, mClock}, mNobody};
  RegionEngine mEngine{mContext};
  OnlineMode mOnline{mContext, mEngine};
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void StayOnOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(static_cast<std::size_t>(std::max(0, ::sched_getcpu())), &cores);
  ::sched_setaffinity(0, sizeof cores, &cores);
}

bool Run(const Effort& effort) {
  StayOnOneCore();
  Bench bench;
  if (!bench.Exchange(2)) return false;  // the first one also finds step
  const kv::LinkQuality before = bench.Quality();
  if (!bench.Exchange(1)) return false;
  const kv::LinkQuality after = bench.Quality();
  const BarePartner bare(Way::Tcp, after.bytesSent - before.bytesSent, after.bytesReceived - before.bytesReceived);

  const int exchanges = effort.passes * kRegions;
  const auto each = [&](double seconds) { return seconds / exchanges * 1e6; };
  std::vector<double> pass, driver, least, ratios;
  for (int round = 0; round < effort.rounds; ++round) {
    bool isGood = true;
    const Cost online = Measure(bench.Partner(), [&] { isGood = bench.GoOnline(effort.passes); });
    const Cost alone = Measure(bench.Partner(), [&] { isGood = bench.Exchange(exchanges) && isGood; });
    const auto nothing = bare.Exchange(exchanges);
    if (!isGood || !nothing) return false;
    pass.push_back(each(online.seconds));
    driver.push_back(each(alone.seconds));
    least.push_back(each(nothing->seconds));
    ratios.push_back(online.seconds / nothing->seconds);
  }
  std::printf("One of %d regions of %d MI on line: %.1f us; the driver's exchange alone %.1f us; bare %.1f us.\n",
              kRegions, kOperands, Median(pass), Median(driver), Median(least));
  std::printf("%.2f times the bare exchange (wanted: at most %.1f)\n", Median(ratios), kWanted);
  return true;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  return bench::Run(isOnce ? bench::kOnce : bench::kFull) ? 0 : 1;
}
