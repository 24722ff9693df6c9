#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "KvTele2/panel/PanelSession.h"
#include "KvTele2/panel/ScreenText.h"
#include "bench/exchange/BarePartner.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "bench/panel/Figures.h"
#include "desktop/console/ConsolePacer.h"
#include "link/LinkLimits.h"

// A K670 in a process of its own, over TCP and over a serial line of 115200 baud: how long it takes from a touch to the
// picture that has changed and to another page, how many bytes that costs, and what a screen costs that stands still.
// The fonts and images of the serial line are there before, as from a cache. The controller's own time is part of all
// figures.

namespace bench {
namespace {

using namespace std::chrono_literals;
using kv::panel::PanelPlace;

struct Effort {
  int rounds;  // a touch and a page change each
  kv::Duration settle;
  kv::Duration idle;  // that the load is measured for
};

constexpr Effort kFull{20, 6s, 20s};
constexpr Effort kOnce{1, 1s, 1s};

constexpr double kBytesASecond = 11520;  // of the serial line

struct Bars {
  Way way;
  const char* name;
  double touch;  // seconds
};
constexpr Bars kWays[] = {{Way::Tcp, "TCP", 0.010}, {Way::Pty, "115200 baud", 0.030}};
constexpr double kMostPageSeconds = 0.100;
constexpr double kMostPageBytes = 800;
constexpr double kMostIdleShare = 0.02;  // of a processor core, and of the line

class Host {
 public:
  // `resources` are filled over TCP and come from there as from a cache.
  Host(Way way, kv::panel::ScreenResources& resources)
      : mWay(way),
        mResources(resources),
        mLink((std::filesystem::temp_directory_path() / "panel-bench-").string() + std::to_string(::getpid())),
        mKvsim(way == Way::Tcp ? std::vector<std::string>{"--model", "K670", "--tcp", "0"}
                               : std::vector<std::string>{"--model", "K670", "--baud", "115200", "--pty", mLink}) {
    kv::LinkSettings settings;
    settings.transport = way == Way::Tcp ? kv::Transport::Tcp : kv::Transport::Serial;
    const std::string& ready = mKvsim.ReadyLine();
    if (way == Way::Tcp) {
      settings.tcpPort = static_cast<std::uint16_t>(std::atoi(ready.substr(ready.rfind(':') + 1).c_str()));
    }
    settings.serialPort = mLink;
    mDriver.UseSettings(settings, false);
    mChannel = mDriver.GetChannel();
  }

  // Shows the screen with all its resources and takes it over; false: it did not work, which stderr tells.
  [[nodiscard]] bool Begin() {
    const bool isReady =
        mChannel && (mWay != Way::Tcp || (Fetch(kv::PanelResourceKind::Font) && Fetch(kv::PanelResourceKind::Image)));
    if (!isReady) {
      std::fprintf(stderr, "%s\n", (mChannel ? mChannel->LastError() : mDriver.LastError()).Text().c_str());
      return false;
    }
    mSession.emplace(kv::panel::PanelParts{.pacer = mPacer, .link = *mChannel->Panel(), .resources = mResources});
    Run(1s);
    mSession->AskToOperate("bench", true);
    Run(1s);
    return mSession->State().mode == kv::panel::PanelMode::Operate && mSession->MissingResources().empty();
  }

  struct Took {
    double seconds;
    double bytes;
  };
  // Touches what has that name and goes on until `isSeen`; what that took, or nothing.
  [[nodiscard]] std::optional<Took> Touch(const std::string& name, const std::function<bool()>& isSeen) {
    Run(500ms);  // what has just changed is not to be touched
    const auto place = Find(name);
    if (!place) return std::nullopt;
    (void)mSession->TakeChanged();
    const double before = Bytes();
    const double start = ClockSeconds();
    if (mSession->Press(*place) != kv::panel::PressRefusal::None) return std::nullopt;
    while (!isSeen()) {
      if (ClockSeconds() > start + 2) return std::nullopt;
      Go(place);
    }
    return Took{ClockSeconds() - start, Bytes() - before};
  }
  // Lets go of the panel and looks on.
  void Leave() { mSession->Leave(); }
  [[nodiscard]] bool HasChanged() { return !mSession->TakeChanged().empty() && mSession->State().isWhole; }
  [[nodiscard]] bool Shows(int page) const { return mSession->State().page == page && mSession->State().isWhole; }

  void Run(kv::Duration span) {
    const kv::Instant end = mPacer.Now() + span;
    while (mPacer.Now() < end) Go(std::nullopt);
  }
  [[nodiscard]] double Bytes() const {
    const kv::LinkQuality quality = mChannel->Quality();
    return static_cast<double>(quality.bytesSent + quality.bytesReceived);
  }

 private:
  void Go(const std::optional<PanelPlace>& pressed) {
    if (mSession->Step(pressed)) return;
    mPacer.Sleep(std::clamp<kv::Duration>(mSession->NextStep().value_or(5ms), 100us, 5ms));
  }
  [[nodiscard]] std::optional<PanelPlace> Find(const std::string& name) const {
    for (const kv::panel::ScreenText& text : kv::panel::TextsOf(*mSession->Model(), mResources)) {
      if (text.touch && text.touch->name == name) return PanelPlace{.x = text.place.x + 5, .y = text.place.y + 5};
    }
    std::fprintf(stderr, "There is no \"%s\" on the screen.\n", name.c_str());
    return std::nullopt;
  }
  [[nodiscard]] bool Fetch(kv::PanelResourceKind kind) {
    kv::PanelLink& link = *mChannel->Panel();
    const auto directory = link.Directory(kind, 1);
    if (!directory) return false;
    for (const kv::PanelResource& entry : directory->entries) {
      std::string bytes;
      while (bytes.size() < entry.length) {
        const auto offset = static_cast<std::uint32_t>(bytes.size());
        const auto piece =
            link.ReadPiece(kind, entry.id, offset, std::min(kv::kMostMemoryPerRead, entry.length - offset), 1);
        if (!piece) return false;
        bytes.append(piece->begin(), piece->end());
      }
      if (!mResources.Add(kind, entry.id, bytes)) return false;
    }
    return true;
  }

  Way mWay;
  kv::panel::ScreenResources& mResources;
  std::string mLink;
  KvsimChild mKvsim;
  kv::ConsolePacer mPacer;
  kv::Driver mDriver{mPacer, {}, kv::MakePort};
  std::shared_ptr<kv::Channel> mChannel;
  std::optional<kv::panel::PanelSession> mSession;
};

Figure FigureOfPart(const std::vector<Host::Took>& all, double Host::Took::* part) {
  std::vector<double> values;
  for (const Host::Took& one : all) values.push_back(one.*part);
  return FigureOf(std::move(values));
}

// Nothing when it did not work; else whether all figures are as wanted.
std::optional<bool> RunWay(const Bars& bars, const Effort& effort, kv::panel::ScreenResources& resources) {
  Host host(bars.way, resources);
  if (!host.Begin()) return std::nullopt;
  std::vector<Host::Took> touches, pages;
  const auto add = [&host](std::vector<Host::Took>& all, const char* name, const std::function<bool()>& isSeen) {
    const auto took = host.Touch(name, isSeen);
    if (took) all.push_back(*took);
    return took.has_value();
  };
  for (int round = 0; round < effort.rounds; ++round) {
    const auto isSeen = [&host] { return host.HasChanged(); };
    if (!add(touches, "Start", isSeen) || !add(touches, "Stop", isSeen)) return std::nullopt;
  }
  for (int round = 0; round < effort.rounds; ++round) {
    if (!add(pages, "Alarms", [&host] { return host.Shows(4); })) return std::nullopt;
    if (!host.Touch("Overview", [&host] { return host.Shows(1); })) return std::nullopt;
  }
  host.Leave();
  host.Run(effort.settle);  // until the rhythm is that of a still screen
  const double bytes = host.Bytes();
  const double cpu = CpuSecondsOf(0);
  const double start = ClockSeconds();
  host.Run(effort.idle);
  const double seconds = ClockSeconds() - start;
  const double core = (CpuSecondsOf(0) - cpu) / seconds;
  const double line = (host.Bytes() - bytes) / seconds / kBytesASecond;
  const bool isGood[] = {
      Tell(bars.name, "touch to changed picture, ms", FigureOfPart(touches, &Host::Took::seconds), 1e3, bars.touch),
      Tell(bars.name, "page change, ms", FigureOfPart(pages, &Host::Took::seconds), 1e3, kMostPageSeconds),
      Tell(bars.name, "page change, bytes", FigureOfPart(pages, &Host::Took::bytes), 1, kMostPageBytes),
      Tell(bars.name, "standing still, % of a core", {core, core}, 100, kMostIdleShare),
      Tell(bars.name, "standing still, % of 115200 baud", {line, line}, 100, kMostIdleShare)};
  return std::ranges::count(isGood, false) == 0;
}

int Run(const Effort& effort, bool isJudged) {
  bool isGood = true;
  kv::panel::ScreenResources resources;
  for (const Bars& bars : kWays) {
    const auto asWanted = RunWay(bars, effort, resources);
    if (!asWanted) {
      std::fprintf(stderr, "It did not work over %s.\n", bars.name);
      return 1;
    }
    isGood = isGood && *asWanted;
  }
  return isGood || !isJudged ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  return bench::Run(isOnce ? bench::kOnce : bench::kFull, !isOnce);
}
