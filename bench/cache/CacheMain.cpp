#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "KvTele2/cache/CacheImport.h"
#include "KvTele2/cache/CacheScreen.h"
#include "KvTele2/panel/PanelSession.h"
#include "KvTele2/panel/ScreenText.h"
#include "base/FilePlatform.h"
#include "desktop/VirtualPacer.h"
#include "simulator/SimulatedController.h"

// The import beside the least that it can cost, which is what a serial line needs for the bytes that went over it; and
// each page of the demonstration plant, shown with a cache and without one.

namespace bench {
namespace {

using namespace std::chrono_literals;
using namespace kv;

constexpr double kBitsAByte = 10;  // 8, start and stop
constexpr double kWantedOfLine = 0.97;

class QuietWindow final : public cache::CacheImportWindow {
 public:
  void Event_Step(cache::CacheStep, cache::CacheStepState) override {}
  void Event_Progress(const cache::CacheProgress&) override {}
};

// A simulated K670 on a serial line.
struct Line {
  explicit Line(int baud) {
    sim::SimulatorOptions options;
    options.model = "K670";
    options.baud = baud;
    controller = sim::SimulatedController::Create(options).value();
    LinkSettings settings;
    settings.transport = Transport::Serial;
    settings.serialPort = "COM1";
    settings.baudRate = baud;
    driver.reset(new Driver(pacer, {}, [this](const LinkSettings& link, Pacer&, ListeningSocket*) {
      auto port = std::make_unique<SimulatedPort>(controller->NewLine(), "", pacer);
      (void)port->SetBaudRate(link.baudRate);
      return port;
    }));
    driver->UseSettings(settings, false);
    channel = driver->GetChannel();
  }
  [[nodiscard]] std::uint64_t Bytes() const {
    const LinkQuality quality = channel->Quality();
    return quality.bytesSent + quality.bytesReceived;
  }

  VirtualPacer pacer;
  std::unique_ptr<sim::SimulatedController> controller;
  std::unique_ptr<Driver> driver;
  std::shared_ptr<Channel> channel;
};

struct Imported {
  cache::CacheContent content;
  bool isGood = false;
};

Imported RunImport(int baud) {
  Line line(baud);
  QuietWindow window;
  const auto file = std::filesystem::temp_directory_path() / ("bench-" + std::to_string(ProcessNumber()) + ".ktc");
  std::filesystem::remove(file);
  cache::CacheImport import({.file = file, .workingFile = {}, .emptyCache = {}}, line.pacer, line.pacer, window);
  const auto plan = import.Prepare(line.channel.get());
  if (!plan) return {};
  const std::uint64_t before = line.Bytes();
  const Instant start = line.pacer.Now();
  const cache::CacheOutcome outcome = import.Run(*line.channel);
  std::filesystem::remove(file);
  if (outcome.end != cache::CacheEnd::Done) {
    std::fprintf(stderr, "%s\n%s\n", outcome.text.c_str(), outcome.reason.c_str());
    return {};
  }
  const double seconds = std::chrono::duration<double>(line.pacer.Now() - start).count();
  const double ofLine = static_cast<double>(line.Bytes() - before) * kBitsAByte / baud / seconds;
  const double content = static_cast<double>(plan->BytesToRead()) * kBitsAByte / baud / seconds;
  std::printf(
      "Import at %d baud: %.2f s for %llu bytes of fonts and images, %.1f %% of the line (wanted %.0f %%), %.1f %% for "
      "them alone%s\n",
      baud, seconds, static_cast<unsigned long long>(plan->BytesToRead()), ofLine * 100, kWantedOfLine * 100,
      content * 100, ofLine < kWantedOfLine ? " <" : "");
  return {import.Content(), ofLine >= kWantedOfLine};
}

// Somebody who goes through the pages of the panel.
class Walker {
 public:
  Walker(const cache::CacheContent* content, const std::string& model)
      : mSession({.pacer = mLine.pacer, .link = *mLine.channel->Panel(), .resources = mResources}) {
    Run(1s);
    mUsesCache = content != nullptr;
    if (mUsesCache) {
      (void)cache::TakeFromCache(*content, model, *mSession.Panel(), *mLine.channel->Panel(), 1, mResources);
      mSession.Redraw();
    } else {
      FetchMissing();
    }
    mFirst = mLine.Bytes();
    mSession.AskToOperate("bench", true);
    Run(500ms);
  }

  // Bytes until all of the page is here, what it is drawn with included. Nothing: there is no way to it.
  std::optional<std::uint64_t> Go(const std::string& name) {
    for (const panel::ScreenText& text : panel::TextsOf(*mSession.Model(), mResources)) {
      if (!text.touch || text.touch->name != name) continue;
      const panel::PanelPlace place{.key = {}, .x = text.place.x + 5, .y = text.place.y + 5};
      const int from = mSession.State().page;
      const std::uint64_t before = mLine.Bytes();
      if (mSession.Press(place) != panel::PressRefusal::None) return std::nullopt;
      const Instant end = mLine.pacer.Now() + 2s;
      while ((mSession.State().page == from || !mSession.State().isWhole) && mLine.pacer.Now() < end) Run(1ms);
      if (mSession.State().page == from) return std::nullopt;
      if (!mUsesCache) FetchMissing();
      const std::uint64_t bytes = mLine.Bytes() - before;
      Run(500ms);
      return bytes;
    }
    return std::nullopt;
  }
  // Bytes until the first page was here.
  [[nodiscard]] std::uint64_t First() const { return mFirst; }
  [[nodiscard]] std::size_t Missing() const { return mSession.MissingResources().size(); }

 private:
  void Run(Duration span) {
    const Instant end = mLine.pacer.Now() + span;
    while (mLine.pacer.Now() < end) {
      if (mSession.Step(std::nullopt)) continue;
      mLine.pacer.Sleep(std::clamp<Duration>(mSession.NextStep().value_or(5ms), 1ms, 5ms));
    }
  }
  void FetchMissing() {
    PanelLink& link = *mLine.channel->Panel();
    for (const panel::Drawing::Missing& missing : mSession.MissingResources()) {
      if (!mDirectories.contains(missing.kind)) mDirectories[missing.kind] = link.Directory(missing.kind, 1).value();
      const auto& entries = mDirectories[missing.kind].entries;
      const auto entry = std::ranges::find(entries, missing.id, &PanelResource::id);
      if (entry == entries.end()) continue;
      std::string bytes;
      while (bytes.size() < entry->length) {
        const auto offset = static_cast<std::uint32_t>(bytes.size());
        const auto piece = link.ReadPiece(missing.kind, missing.id, offset, std::min(4096U, entry->length - offset), 1);
        bytes.append(piece.value().begin(), piece.value().end());
      }
      (void)mResources.Add(missing.kind, missing.id, bytes);
    }
    mSession.Redraw();
  }

  Line mLine{115200};
  panel::ScreenResources mResources;
  panel::PanelSession mSession;
  std::map<PanelResourceKind, PanelDirectory> mDirectories;
  std::uint64_t mFirst = 0;
  bool mUsesCache = false;
};

bool RunPages(const cache::CacheContent& content) {
  Walker with(&content, content.owner->version.model);
  Walker without(nullptr, {});
  std::printf("The first page: %llu bytes with a cache, %llu without\n", static_cast<unsigned long long>(with.First()),
              static_cast<unsigned long long>(without.First()));
  bool isGood = true;
  for (const char* page : {"Recipe", "Manual", "Alarms", "Trend", "Info", "Overview"}) {
    const auto cached = with.Go(page);
    const auto bare = without.Go(page);
    if (!cached || !bare) continue;
    std::printf("Page %s: %llu bytes with a cache, %llu without\n", page, static_cast<unsigned long long>(*cached),
                static_cast<unsigned long long>(*bare));
    isGood &= with.Missing() == 0 && *cached <= *bare;
  }
  return isGood;
}

}  // namespace
}  // namespace bench

int main() {
  const bench::Imported fast = bench::RunImport(115200);
  const bench::Imported slow = bench::RunImport(9600);
  return fast.isGood && slow.isGood && bench::RunPages(fast.content) ? 0 : 1;
}
