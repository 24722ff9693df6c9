#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "KvCmDrv1/Driver.h"
#include "base/Hex.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "clone/CloneInfo.h"
#include "clone/clsDumpPLC.h"
#include "desktop/PacerWallClock.h"
#include "desktop/VirtualPacer.h"
#include "desktop/console/ConsolePacer.h"
#include "simulator/SimulatedController.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/SilentCloner.h"

// Creating and restoring a clone beside the least that it can cost: what a serial line of 115200 baud needs for the
// same bytes (on virtual time, so the figure is always the same), and two processes that pass as many bytes back and
// forth over TCP and do nothing else. Then the memory that a create takes, for a small and a big controller.

namespace bench {
namespace {

constexpr double kMebibyte = 1024.0 * 1024.0;
constexpr int kBaud = 115200;
constexpr double kBitsAByte = 10;  // 8, start and stop
constexpr double kWantedOfLine = 0.97;
constexpr double kMostOfBare = 2;  // times the bare exchange, for a restore

struct Effort {
  const char* lineModel;
  const char* tcpModel;
  int creates;
  kv::SegmentBoxes restored;
  std::uint32_t bigController;  // bytes
};

constexpr Effort kFull{"K220-22-R1", "K220-22-R1", 9, {}, 64U << 20};
constexpr Effort kOnce{"AurexQ50", "AurexQ50", 1, {.op = false, .dt = false, .ap = false, .os = false}, 4U << 20};

// What every part needs to let the engine work.
struct Bench {
  ~Bench() { std::filesystem::remove(file); }

  bool Create(kv::Channel& link, kv::Pacer& pacer) {
    kv::clsDumpPLC engine(window, prompts, pacer, clock);
    engine.CreateGhost(link, file);
    return Told(engine.Outcome());
  }
  bool Restore(kv::Channel& link, kv::Pacer& pacer) {
    kv::clsDumpPLC engine(window, prompts, pacer, clock);
    engine.RestoreGhost(*link.GetSerialPort(), file, &link);
    return Told(engine.Outcome());
  }
  static bool Told(const kv::CloneOutcome& outcome) {
    if (outcome.end != kv::CloneEnd::Done) std::fprintf(stderr, "%s\n", outcome.reason.c_str());
    return outcome.end == kv::CloneEnd::Done;
  }

  std::filesystem::path file = std::filesystem::temp_directory_path() / ("clone-bench-" + std::to_string(::getpid()));
  kv::test::SilentCloner window;
  kv::test::KnowingPrompts prompts;
  kv::PacerWallClock clock;
};

std::uint64_t BytesOf(const kv::LinkQuality& quality) {
  return quality.bytesSent + quality.bytesReceived;
}

void ReportLine(const char* what, double seconds, std::uint64_t bytes) {
  const double least = static_cast<double>(bytes) * kBitsAByte / kBaud;
  const double ratio = least / seconds;
  std::printf("%s, %d baud: %.2f s for %llu bytes on the line, least %.2f s: %.1f %% (wanted %.0f %%)%s\n", what, kBaud,
              seconds, static_cast<unsigned long long>(bytes), least, ratio * 100, kWantedOfLine * 100,
              ratio < kWantedOfLine ? " <" : "");
}

bool RunSerialLine(const Effort& effort) {
  Bench bench;
  kv::VirtualPacer pacer;
  sim::SimulatorOptions options;
  options.model = effort.lineModel;
  options.baud = kBaud;
  const auto controller = sim::SimulatedController::Create(options).value();
  kv::Driver driver(pacer, [&](const std::string&) { return controller->NewLine(); }, nullptr);
  const auto link = driver.GetChannel();
  kv::Instant start = pacer.Now();
  if (!bench.Create(*link, pacer)) return false;
  const auto secondsSince = [&] { return std::chrono::duration<double>(pacer.Now() - start).count(); };
  const std::uint64_t created = BytesOf(link->Quality());
  ReportLine("Create", secondsSince(), created);
  start = pacer.Now();
  if (!bench.Restore(*link, pacer)) return false;
  ReportLine("Restore", secondsSince(), BytesOf(link->Quality()) - created);
  return true;
}

// Seconds of the bare partner for as many exchanges of as many bytes.
double BareSeconds(std::uint64_t exchanges, std::uint64_t sent, std::uint64_t received) {
  const BarePartner bare(Way::Tcp, sent / exchanges, received / exchanges);
  const auto cost = bare.Exchange(static_cast<int>(exchanges));
  return cost ? cost->seconds : 0;
}

void Report(const char* what, double seconds, double least, double mebibytes) {
  std::printf("%s, TCP: %.3f s a MiB, bare exchange %.3f s: %.1f %%\n", what, seconds / mebibytes, least / mebibytes,
              least / seconds * 100);
}

double BytesIn(const std::filesystem::path& file) {
  const kv::CloneInfo info = kv::InspectClone(file).value();
  double bytes = 0;
  for (const auto& segment : info.segments) bytes += segment.segment.length;
  return bytes;
}

bool RunTcp(const Effort& effort) {
  Bench bench;
  KvsimChild kvsim({"--model", effort.tcpModel, "--tcp", "0"});
  const std::string& ready = kvsim.ReadyLine();
  kv::LinkSettings settings;
  settings.transport = kv::Transport::Tcp;
  settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
  kv::ConsolePacer pacer;
  kv::Driver driver(pacer, {}, kv::MakePort);
  driver.UseSettings(settings, false);
  const auto link = driver.GetChannel();
  if (!link) return false;

  double start = ClockSeconds();
  for (int i = 0; i < effort.creates; ++i) {
    if (!bench.Create(*link, pacer)) return false;
  }
  const double created = ClockSeconds() - start;
  const kv::LinkQuality quality = link->Quality();
  Report("Create", created, BareSeconds(quality.exchanges, quality.bytesSent, quality.bytesReceived),
         BytesIn(bench.file) * effort.creates / kMebibyte);

  bench.window.boxes = effort.restored;
  if (!bench.Create(*link, pacer)) return false;
  start = ClockSeconds();
  if (!bench.Restore(*link, pacer)) return false;
  const double restored = ClockSeconds() - start;
  const auto lines = kv::InspectClone(bench.file).value().frames;
  constexpr std::uint64_t kReply = 22;  // "/01WDOK", seal, checksum, CR
  const double bare = BareSeconds(lines, std::filesystem::file_size(bench.file), lines * kReply);
  Report("Restore", restored, bare, BytesIn(bench.file) / kMebibyte);
  std::printf("         %.2f times the bare exchange of %zu lines (wanted %.0f at most)%s\n", restored / bare, lines,
              kMostOfBare, restored > kMostOfBare * bare ? " <" : "");
  return true;
}

// A controller with one segment of any size.
class BigChannel final : public kv::test::FakeChannel {
 public:
  explicit BigChannel(std::uint32_t length) {
    succeeds = true;
    version = {"K220-22-R1", "10", "4.60", "19"};
    reply = kv::CommandReply{"GI10001" + std::string("HWR00000000") + kv::ToHex(length, 8) + "??"};
  }
  std::optional<kv::Bytes> ReadMemoryBlock(std::uint32_t, std::uint32_t length, std::uint8_t) override {
    return kv::Bytes(length);
  }
  kv::DownloadEngine* GetDownloadEngine() override { return &mRunState; }

 private:
  class RunState final : public kv::DownloadEngine {
   public:
    void SetMessage(const kv::BlockFields& fields) override { mFields = fields; }
    [[nodiscard]] const kv::BlockFields& Message() const override { return mFields; }
    bool Send() override { return true; }
    bool SendWithData(std::span<const std::uint8_t>) override { return true; }
    [[nodiscard]] const kv::Bytes& ReplyBytes() const override { return mState; }
    [[nodiscard]] int ReplyStatus() const override { return kv::kBlockDone; }

   private:
    kv::BlockFields mFields;
    kv::Bytes mState{'R', 0};
  };
  RunState mRunState;
};

long PeakKibibytes() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

bool RunMemory(const Effort& effort) {
  Bench bench;
  kv::VirtualPacer pacer;
  BigChannel small(1U << 20);
  BigChannel big(effort.bigController);
  if (!bench.Create(small, pacer)) return false;
  const long before = PeakKibibytes();
  if (!bench.Create(big, pacer)) return false;
  const auto info = kv::InspectClone(bench.file);
  std::printf("Memory: %ld KiB after a create of 1 MiB, %ld KiB more after one of %u MiB and its inspection\n", before,
              PeakKibibytes() - before, effort.bigController >> 20);
  return info && info->IsSound();
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  const bench::Effort& effort = isOnce ? bench::kOnce : bench::kFull;
  const bool isGood = bench::RunSerialLine(effort) && bench::RunTcp(effort) && bench::RunMemory(effort);
  return isGood ? 0 : 1;
}
