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
#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/OperandTypes.h"
#include "KvCmDrv1/wire/Requests.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "bench/exchange/PlainClient.h"
#include "desktop/console/ConsolePacer.h"

// Exchanges a second and processor time an exchange: the driver's channel with kvsim in a process of its own, beside
// two processes that pass as many bytes back and forth and do nothing else, and over a pseudo terminal also beside a
// plain client of kvsim. All on one core, in turn, so that the ratio means something on a machine whose speed does not
// stand still.

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
  bool isBlock;
  std::int32_t typeCode;
  std::uint16_t operands;
  Read read;
  double leastBytes;   // an operand's value alone, in binary
  double wantedOfTcp;  // of the bare exchange over TCP
};

template <std::int32_t kType, std::int32_t kCount>
bool ReadList(kv::Channel& channel) {
  const kv::OperandListRequest request{.driverTypeCode = kType, .start = 0, .count = kCount};
  return channel.ReadOperandList(std::span(&request, 1), 1).has_value();
}

constexpr std::int32_t kMB = kv::OperandCode::MB, kMI = kv::OperandCode::MI;

const std::vector<Case>& Cases() {
  static const std::vector<Case> kCases{
      {"60 MI, block", "K220-22-R1", true, kMI, 60, ReadList<kMI, 60>, 2, 0.88},
      {"120 MB, block", "K220-22-R1", true, kMB, 120, ReadList<kMB, 120>, 0.125, 0.88},
      {"60 MI, ASCII", "Q50", false, kMI, 60, [](auto& c) { return c.ReadMI(0, 60, 1).has_value(); }, 2, 0.84},
      {"120 MB, ASCII", "Q50", false, kMB, 120, [](auto& c) { return c.ReadMB(0, 120, 1).has_value(); }, 0.125, 0.84},
  };
  return kCases;
}

// The request of a case as the driver sends it.
std::string RequestOf(const Case& entry, std::uint16_t number) {
  std::string bytes;
  if (entry.isBlock) {
    std::string record;
    for (const std::uint32_t field : {0U, static_cast<unsigned>(entry.typeCode), 0U, unsigned{entry.operands}, 0U}) {
      kv::AppendLittleEndian(record, field, 4);
    }
    const kv::BlockFields fields{.opCode = 256, .param1 = 0, .dataLength = 1, .param3 = 0, .param4 = 0};
    kv::EncodeBlockRequest({.unit = 1, .status = 0, .sequence = number, .fields = fields, .payload = record}, bytes);
    return bytes;
  }
  kv::RequestWriter writer;
  const kv::OperandRange range{kv::FindOperandType(entry.typeCode), 0, entry.operands};
  (void)kv::EncodeFrame(1, writer.ReadOperands(1, number, range), bytes);
  return bytes;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// A kvsim of its own, and where it is found.
class Partner {
 public:
  Partner(Way way, const char* model)
      : mLink((std::filesystem::temp_directory_path() / "exchange-bench-").string() + std::to_string(::getpid()) + "-" +
              std::to_string(++mCount)),
        mKvsim(way == Way::Tcp ? std::vector<std::string>{"--model", model, "--tcp", "0"}
                               : std::vector<std::string>{"--model", model, "--pty", mLink}) {}

  [[nodiscard]] const std::string& TerminalLink() const { return mLink; }
  [[nodiscard]] std::uint16_t TcpPort() const {
    const std::string& ready = mKvsim.ReadyLine();
    return static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
  }
  [[nodiscard]] pid_t Process() const { return mKvsim.Process(); }

 private:
  static inline int mCount = 0;
  std::string mLink;
  KvsimChild mKvsim;
};

// The driver's link to a partner.
class Bench {
 public:
  Bench(Way way, const char* model) : mPartner(way, model) {
    kv::LinkSettings settings;
    settings.transport = way == Way::Tcp ? kv::Transport::Tcp : kv::Transport::Serial;
    if (way == Way::Tcp) settings.tcpPort = mPartner.TcpPort();
    settings.serialPort = mPartner.TerminalLink();
    mDriver.UseSettings(settings, false);
    mChannel = mDriver.GetChannel();
    if (!mChannel) std::fprintf(stderr, "%s\n", mDriver.LastError().Text().c_str());
  }

  [[nodiscard]] kv::Channel* Channel() { return mChannel.get(); }
  [[nodiscard]] kv::Trace& Trace() { return mDriver.GetTrace(); }

  [[nodiscard]] std::optional<Cost> Exchange(const Read& read, int times) {
    bool isGood = true;
    const auto cost = Measure(mPartner.Process(), [&] {
      for (int i = 0; i < times && isGood; ++i) isGood = read(*mChannel);
    });
    if (!isGood) std::fprintf(stderr, "%s\n", mChannel->LastError().Text().c_str());
    return isGood ? std::optional(cost) : std::nullopt;
  }

 private:
  Partner mPartner;
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
  if (!bench.Exchange(read, 2)) return std::nullopt;  // the first one also synchronises
  const auto before = bench.Channel()->Quality();
  if (!bench.Exchange(read, 1)) return std::nullopt;
  const auto after = bench.Channel()->Quality();
  return Bytes{after.bytesSent - before.bytesSent, after.bytesReceived - before.bytesReceived};
}

// What some rounds of one way to exchange took.
struct Rounds {
  int exchanges;  // in one round
  std::vector<Cost> costs;

  // False when the round has failed.
  [[nodiscard]] bool Add(const std::optional<Cost>& cost) {
    if (cost) costs.push_back(*cost);
    return cost.has_value();
  }
  [[nodiscard]] double ExchangesASecond() const {
    return MedianOf([this](std::size_t i) { return exchanges / costs[i].seconds; });
  }
  [[nodiscard]] double CpuMicroseconds() const {
    return MedianOf([this](std::size_t i) { return costs[i].cpuSeconds / exchanges * 1e6; });
  }
  // How much of `least` it reaches; each round is held against the one beside it.
  [[nodiscard]] double PartOf(const Rounds& least) const {
    return MedianOf([&](std::size_t i) { return least.costs[i].seconds / costs[i].seconds; });
  }

 private:
  template <typename Figure>
  [[nodiscard]] double MedianOf(const Figure& figure) const {
    std::vector<double> values;
    for (std::size_t i = 0; i < costs.size(); ++i) values.push_back(figure(i));
    return Median(std::move(values));
  }
};

bool RunCase(Way way, const Case& entry, const Effort& effort) {
  Bench bench(way, entry.model);
  if (bench.Channel() == nullptr) return false;
  const auto bytes = BytesOfOne(bench, entry.read);
  if (!bytes) return false;
  const BarePartner bare(way, bytes->request, bytes->reply);
  const Partner plainsPartner(Way::Pty, entry.model);
  const PlainClient plain(plainsPartner.TerminalLink(), {RequestOf(entry, 1), RequestOf(entry, 2)}, bytes->reply);
  Rounds ours{effort.exchanges, {}}, least{effort.exchanges, {}}, plains{effort.exchanges, {}};
  for (int round = 0; round < effort.rounds; ++round) {
    if (!ours.Add(bench.Exchange(entry.read, effort.exchanges))) return false;
    if (!least.Add(bare.Exchange(effort.exchanges))) return false;
    if (way == Way::Pty && !plains.Add(plain.Exchange(effort.exchanges, plainsPartner.Process()))) return false;
  }
  const double ratio = ours.PartOf(least);
  const double wanted = way == Way::Tcp ? entry.wantedOfTcp : plains.PartOf(least);
  std::printf("%-4s %-14s %9.0f %9.0f %6.1f %% (%4.1f %%)%s %8.1f %8.1f %10.3f %8.3f\n",
              way == Way::Tcp ? "TCP" : "pty", entry.name, ours.ExchangesASecond(), least.ExchangesASecond(),
              ratio * 100, wanted * 100, ratio < wanted ? " <" : "  ", ours.CpuMicroseconds(), least.CpuMicroseconds(),
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
  std::printf("%-4s %-14s %9s %9s %18s   %8s %8s %10s %8s\n", "Way", "Exchange", "a second", "bare", "of bare (wanted)",
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
