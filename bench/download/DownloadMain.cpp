#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "deflate/Deflate.h"
#include "desktop/PacerWallClock.h"
#include "desktop/VirtualPacer.h"
#include "desktop/console/ConsolePacer.h"
#include "download/ProjectDownload.h"
#include "download/clsAurexOSDownloader.h"
#include "download/clsBrioQ50OSDownloader.h"
#include "simulator/SimulatedController.h"
#include "simulator/files/SampleFiles.h"
#include "tests/support/SilentCloner.h"

// Sending an O/S and a project beside the least that it can cost: what a serial line needs for the same bytes (on
// virtual time, so the figure is always the same), and two processes that pass as many bytes back and forth over TCP
// and do nothing else. The time that a controller takes to erase, to program and to restart is its own and not counted;
// compressing is measured by itself.

namespace bench {
namespace {

constexpr double kMebibyte = 1024.0 * 1024.0;
constexpr int kBaud = 115200;
constexpr double kBitsAByte = 10;  // 8, start and stop
constexpr double kWantedOfLine = 0.97;
constexpr long kMostMemory = 512;  // KiB that a download may take while it goes on, whatever its length
constexpr std::size_t kLargestCompactProject = 20'000;  // bytes of the place that it has in the controller

struct Effort {
  std::size_t os;       // bytes
  std::size_t project;  // bytes
  double wantedOfLine;  // less is a failure
};

constexpr Effort kFull{std::size_t{1} << 20, 60'000, kWantedOfLine};
constexpr Effort kOnce{20'000, 5'000, 0};  // so little is no measure

long PeakKibibytes() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// One moment of a download.
struct Mark {
  double seconds = 0;
  kv::LinkQuality quality;
  long kibibytes = 0;
};

// Says yes to everything, and keeps in mind when the first tenth and when all of the content had gone: in the first one
// a compact project waits for the flash.
class MeasuringWindow : public kv::DownloadWindow, public kv::test::KnowingPrompts, public kv::test::SilentCloner {
 public:
  MeasuringWindow(const kv::Channel& link, std::function<double()> clock) : mLink(link), mClock(std::move(clock)) {}

  Mark first;
  Mark last;

  void SetStatus(std::string_view) override {}
  void ResetProgress(std::int64_t) override {}
  void StepProgress() override {}
  void ProgressInfo(int, std::int64_t, std::int64_t) override {}
  void AmountSent(std::uint64_t done, std::uint64_t total) override {
    Mark& mark = done < total / 10 ? first : last;
    mark = Mark{mClock(), mLink.Quality(), PeakKibibytes()};
  }
  kv::AurexOsChoice ChooseAurexOs(const kv::AurexOsLists& lists) override {
    return {lists.os.files.at(*lists.os.preselected).path, lists.fonts.files.at(*lists.fonts.preselected).path};
  }
  std::optional<std::size_t> ChooseCompactOs(const kv::FileList& list) override { return list.preselected; }
  kv::BiosAnswer WarnOfIncompatibleBios() override { return kv::BiosAnswer::Continue; }

 private:
  const kv::Channel& mLink;
  std::function<double()> mClock;
};

// Files for one model, in a folder that goes in the end.
class Samples {
 public:
  Samples(const char* model, const Effort& effort) : mModel(*sim::FindModel(model)) {
    const sim::OsVersion os{"4.71", 2};
    const bool isQ50 = mModel.osModel == "Q50";
    if (IsAurex()) {
      const auto folder = mFolder / "Os Aurex" / mModel.osModel;
      Put(folder / sim::OsFileName(mModel, os), sim::MakeOs(mModel, {os, "", effort.os}));
      Put(folder / sim::FontsFileName({"1.30", 0}), sim::MakeFonts(mModel, {{"1.30", 0}, "", 1000}));
    } else if (isQ50) {
      Put(mFolder / "OS" / "OS50" / sim::OsFileName(mModel, os), sim::MakeOs(mModel, {os, "", effort.os}));
    }
    const std::size_t size = IsAurex() ? effort.project : std::min(effort.project, kLargestCompactProject);
    Put(Project(), sim::MakeProject(mModel, {"Bench", {"4.60", 19}, size}));
  }
  ~Samples() { std::filesystem::remove_all(mFolder); }
  Samples(const Samples&) = delete;
  Samples& operator=(const Samples&) = delete;

  [[nodiscard]] bool IsAurex() const { return mModel.UnderstandsBlocks(); }
  [[nodiscard]] kv::ProgramPaths Paths() const { return kv::ProgramPaths(mFolder); }
  [[nodiscard]] std::filesystem::path Project() const {
    return mFolder / ("Bench" + std::string(sim::ProjectExtension(mModel)));
  }

 private:
  static void Put(const std::filesystem::path& file, const sim::FileOrFault& content) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content.value();
  }

  const sim::Model& mModel;
  std::filesystem::path mFolder =
      std::filesystem::temp_directory_path() / ("download-bench-" + std::to_string(::getpid()));
};

bool Told(const kv::DownloadOutcome& outcome) {
  if (outcome.end != kv::DownloadEnd::Done) std::fprintf(stderr, "%s\n", kv::OutcomeText(outcome).c_str());
  return outcome.end == kv::DownloadEnd::Done;
}

bool SendOs(kv::Channel& link, const Samples& samples, MeasuringWindow& window, kv::Pacer& pacer) {
  const kv::PacerWallClock clock;
  const kv::ProgramPaths paths = samples.Paths();
  if (samples.IsAurex()) {
    kv::clsAurexOSDownloader engine(window, {window, window, window, pacer, clock}, paths);
    return engine.DownloadOS(link, {}) || Told(engine.Outcome());
  }
  kv::clsBrioQ50OSDownloader engine(window, window, pacer, paths);
  return engine.DownloadOS(link, {}) || Told(engine.Outcome());
}

bool SendProject(kv::Channel& link, const Samples& samples, MeasuringWindow& window, kv::Pacer& pacer) {
  kv::ProjectDownload engine(window, window, pacer);
  engine.Download(link, kv::ReadProject(samples.Project(), !samples.IsAurex()).value(), {});
  return Told(engine.Outcome());
}

using Send = bool (*)(kv::Channel&, const Samples&, MeasuringWindow&, kv::Pacer&);

struct Case {
  const char* name;
  const char* model;
  Send send;
  int baud;  // at which the content goes when the line has 115200
};

constexpr Case kCases[] = {
    {"O/S of an Aurex controller", "K330", SendOs, kBaud},
    {"O/S of a Q50", "Q50", SendOs, 57600},
    {"Project of an Aurex controller", "K330", SendProject, kBaud},
    {"Project of a compact controller", "Q51", SendProject, kBaud},
};

struct Spent {
  explicit Spent(const MeasuringWindow& window)
      : seconds(window.last.seconds - window.first.seconds),
        exchanges(window.last.quality.exchanges - window.first.quality.exchanges),
        sent(window.last.quality.bytesSent - window.first.quality.bytesSent),
        received(window.last.quality.bytesReceived - window.first.quality.bytesReceived) {}

  double seconds;
  std::uint64_t exchanges;
  std::uint64_t sent;
  std::uint64_t received;
};

bool RunSerialLine(const Case& which, const Effort& effort) {
  const Samples samples(which.model, effort);
  kv::VirtualPacer pacer;
  sim::SimulatorOptions options;
  options.model = which.model;
  options.baud = kBaud;
  const auto controller = sim::SimulatedController::Create(options).value();
  kv::LinkSettings settings;
  settings.transport = kv::Transport::Serial;
  settings.serialPort = "COM1";
  kv::Driver driver(pacer, {}, [&](const kv::LinkSettings& link, kv::Pacer&, kv::ListeningSocket*) {
    auto port = std::make_unique<kv::SimulatedPort>(controller->NewLine(), "", pacer);
    (void)port->SetBaudRate(link.baudRate);
    return port;
  });
  driver.UseSettings(settings, false);
  const auto link = driver.GetChannel();
  const auto seconds = [&pacer] { return std::chrono::duration<double>(pacer.Now().time_since_epoch()).count(); };
  MeasuringWindow window(*link, seconds);
  if (!which.send(*link, samples, window, pacer)) return false;
  const Spent spent(window);
  const double least = static_cast<double>(spent.sent + spent.received) * kBitsAByte / which.baud;
  const double ratio = least / spent.seconds;
  std::printf("%s, %d baud: %.2f s for %llu bytes on the line, least %.2f s: %.1f %% (wanted %.0f %%)%s\n", which.name,
              which.baud, spent.seconds, static_cast<unsigned long long>(spent.sent + spent.received), least,
              ratio * 100, kWantedOfLine * 100, ratio < kWantedOfLine ? " <" : "");
  return ratio >= effort.wantedOfLine;
}

bool RunTcp(const Case& which, const Effort& effort) {
  const Samples samples(which.model, effort);
  const KvsimChild kvsim({"--model", which.model, "--tcp", "0"});
  const std::string& ready = kvsim.ReadyLine();
  kv::LinkSettings settings;
  settings.transport = kv::Transport::Tcp;
  settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
  kv::ConsolePacer pacer;
  kv::Driver driver(pacer, {}, kv::MakePort);
  driver.UseSettings(settings, false);
  const auto link = driver.GetChannel();
  if (!link) return false;
  MeasuringWindow window(*link, ClockSeconds);
  if (!which.send(*link, samples, window, pacer)) return false;
  const Spent spent(window);
  const BarePartner bare(Way::Tcp, spent.sent / spent.exchanges, spent.received / spent.exchanges);
  const auto cost = bare.Exchange(static_cast<int>(spent.exchanges));
  if (!cost) return false;
  const long more = window.last.kibibytes - window.first.kibibytes;
  std::printf("%s, TCP: %.3f s in %llu exchanges, bare exchange %.3f s: %.1f %%; %ld KiB more memory at the end%s\n",
              which.name, spent.seconds, static_cast<unsigned long long>(spent.exchanges), cost->seconds,
              cost->seconds / spent.seconds * 100, more, more > kMostMemory ? " <" : "");
  return more <= kMostMemory;
}

bool RunCompression(const Effort& effort) {
  sim::SampleOs sample;
  sample.os = {"4.71", 2};
  sample.size = effort.os;
  const std::string content = sim::MakeOs(*sim::FindModel("K330"), sample).value();
  const kv::Bytes bytes(content.begin(), content.end());
  const double start = ClockSeconds();
  const auto packed = kv::Deflate(bytes);
  const double seconds = ClockSeconds() - start;
  if (!packed) return false;
  std::printf("Compressing: %.3f s a MiB, to %.0f %%\n", seconds * kMebibyte / static_cast<double>(bytes.size()),
              100.0 * static_cast<double>(packed->size()) / static_cast<double>(bytes.size()));
  return true;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  const bench::Effort& effort = isOnce ? bench::kOnce : bench::kFull;
  bool isGood = bench::RunCompression(effort);
  for (const bench::Case& which : bench::kCases) {
    isGood &= bench::RunSerialLine(which, effort);
    // Over TCP the controller takes its time to erase and to program: once, the shortest download is enough.
    if (!isOnce || &which == &bench::kCases[2]) isGood &= bench::RunTcp(which, effort);
  }
  return isGood ? 0 : 1;
}
