#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "desktop/console/ConsolePacer.h"

// Exchanges a second and processor time an exchange: the driver's channel with kvsim in a process of its own, beside
// two processes that pass as many bytes back and forth and do nothing else. All on one core, in turn, so that the ratio
// means something on a machine whose speed does not stand still.

namespace bench {
namespace {

struct Effort {
  int rounds;     // driver and bare take turns this often; the median of the ratios counts
  int exchanges;  // in one round
};

constexpr Effort kFull{15, 4000};
constexpr Effort kOnce{1, 20};

using Read = std::function<bool(kv::Channel&)>;

struct Case {
  const char* name;
  const char* model;
  Read read;
  int operands;
  double leastBytes;  // an operand's value alone, in binary
};

bool ReadList(kv::Channel& channel, std::int32_t typeCode, std::int32_t count) {
  const kv::OperandListRequest request{.driverTypeCode = typeCode, .start = 0, .count = count};
  return channel.ReadOperandList(std::span(&request, 1), 1).has_value();
}

const std::vector<Case>& Cases() {
  static const std::vector<Case> kCases{
      {"60 MI, block", "K220-22-R1", [](kv::Channel& c) { return ReadList(c, 3, 60); }, 60, 2},
      {"120 MB, block", "K220-22-R1", [](kv::Channel& c) { return ReadList(c, 1, 120); }, 120, 0.125},
      {"60 MI, ASCII", "Q50", [](kv::Channel& c) { return c.ReadMI(0, 60, 1).has_value(); }, 60, 2},
      {"120 MB, ASCII", "Q50", [](kv::Channel& c) { return c.ReadMB(0, 120, 1).has_value(); }, 120, 0.125},
  };
  return kCases;
}

double Wanted(Way way) {
  return way == Way::Tcp ? 0.85 : 0.95;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// A link to a kvsim of its own.
class Bench {
 public:
  Bench(Way way, const char* model)
      : mLink(std::filesystem::temp_directory_path() / ("exchange-bench-" + std::to_string(::getpid()))),
        mKvsim(way == Way::Tcp ? std::vector<std::string>{"--model", model, "--tcp", "0"}
                               : std::vector<std::string>{"--model", model, "--pty", mLink.string()}) {
    kv::LinkSettings settings;
    const auto& ready = mKvsim.ReadyLine();
    if (way == Way::Tcp) {
      settings.transport = kv::Transport::Tcp;
      settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
    } else {
      settings.transport = kv::Transport::Serial;
      settings.serialPort = mLink.string();
    }
    mDriver.UseSettings(settings, false);
    mChannel = mDriver.GetChannel();
    if (!mChannel) std::fprintf(stderr, "%s\n", mDriver.LastError().Text().c_str());
  }

  [[nodiscard]] kv::Channel* Channel() { return mChannel.get(); }
  [[nodiscard]] kv::Trace& Trace() { return mDriver.GetTrace(); }

  [[nodiscard]] std::optional<Cost> Exchange(const Read& read, int times) {
    bool isGood = true;
    const auto cost = Measure(mKvsim.Process(), [&] {
      for (int i = 0; i < times && isGood; ++i) isGood = read(*mChannel);
    });
    if (!isGood) std::fprintf(stderr, "%s\n", mChannel->LastError().Text().c_str());
    return isGood ? std::optional(cost) : std::nullopt;
  }

 private:
  std::filesystem::path mLink;
  KvsimChild mKvsim;
  kv::ConsolePacer mPacer;
  kv::Driver mDriver{mPacer, {}, kv::MakePort};
  std::shared_ptr<kv::Channel> mChannel;
};

struct Bytes {
  std::size_t request = 0;
  std::size_t reply = 0;
};

// How many bytes one exchange puts on the wire; nothing when it fails.
std::optional<Bytes> BytesOfOne(Bench& bench, const Read& read) {
  if (!bench.Exchange(read, 2)) return std::nullopt;  // the first one also finds step
  const auto before = bench.Channel()->Quality();
  if (!bench.Exchange(read, 1)) return std::nullopt;
  const auto after = bench.Channel()->Quality();
  return Bytes{after.bytesSent - before.bytesSent, after.bytesReceived - before.bytesReceived};
}

bool RunCase(Way way, const Case& entry, const Effort& effort) {
  Bench bench(way, entry.model);
  if (bench.Channel() == nullptr) return false;
  const auto bytes = BytesOfOne(bench, entry.read);
  if (!bytes) return false;
  const BarePartner bare(way, bytes->request, bytes->reply);
  std::vector<double> ratios, ours, theirs, ourCpu, theirCpu;
  const auto perExchange = [&](double seconds) { return seconds / effort.exchanges * 1e6; };
  for (int round = 0; round < effort.rounds; ++round) {
    const auto driver = bench.Exchange(entry.read, effort.exchanges);
    const auto least = bare.Exchange(effort.exchanges);
    if (!driver || !least) return false;
    ratios.push_back(least->seconds / driver->seconds);
    ours.push_back(effort.exchanges / driver->seconds);
    theirs.push_back(effort.exchanges / least->seconds);
    ourCpu.push_back(perExchange(driver->cpuSeconds));
    theirCpu.push_back(perExchange(least->cpuSeconds));
  }
  const double ratio = Median(ratios);
  std::printf("%-4s %-14s %9.0f %9.0f %6.0f %% (%2.0f %%)%s %8.1f %8.1f %10.3f %8.3f\n",
              way == Way::Tcp ? "TCP" : "pty", entry.name, Median(ours), Median(theirs), ratio * 100, Wanted(way) * 100,
              ratio < Wanted(way) ? " <" : "  ", Median(ourCpu), Median(theirCpu),
              static_cast<double>(bytes->request + bytes->reply) / entry.operands, entry.leastBytes);
  return true;
}

// What it costs to have every frame written to a file.
bool RunTrace(const Effort& effort) {
  Bench bench(Way::Tcp, "K220-22-R1");
  if (bench.Channel() == nullptr) return false;
  const auto& read = Cases().front().read;
  const auto file = std::filesystem::temp_directory_path() / ("exchange-trace-" + std::to_string(::getpid()));
  std::vector<double> off, on;
  bool isGood = true;
  for (int round = 0; round < effort.rounds && isGood; ++round) {
    for (const bool isOn : {false, true}) {
      isGood = isGood && bench.Trace().WriteTo(isOn ? file.string() : "");
      const auto cost = bench.Exchange(read, effort.exchanges);
      isGood = isGood && cost;
      if (cost) (isOn ? on : off).push_back(cost->cpuSeconds / effort.exchanges * 1e6);
    }
  }
  std::filesystem::remove(file);
  if (!isGood) return false;
  std::printf("\nTrace, 60 MI over TCP: off %.2f us of processor an exchange, to a file %.2f us\n", Median(off),
              Median(on));
  return true;
}

void StayOnOneCore() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(static_cast<std::size_t>(std::max(0, ::sched_getcpu())), &cores);
  ::sched_setaffinity(0, sizeof cores, &cores);
}

int Run(const Effort& effort) {
  StayOnOneCore();
  std::printf("%-4s %-14s %9s %9s %17s   %8s %8s %10s %8s\n", "Way", "Exchange", "a second", "bare", "of bare (wanted)",
              "CPU us", "bare", "B/operand", "least");
  bool isGood = true;
  for (const Way way : {Way::Tcp, Way::Pty}) {
    for (const auto& entry : Cases()) isGood = RunCase(way, entry, effort) && isGood;
  }
  isGood = RunTrace(effort) && isGood;
  return isGood ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  return bench::Run(isOnce ? bench::kOnce : bench::kFull);
}
