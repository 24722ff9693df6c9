#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <chrono>
#include <string>

#include "KvTele2/panel/ScreenText.h"
#include "apps/kvtele/PngFile.h"
#include "apps/kvtele/TerminalPanel.h"
#include "apps/kvtele/Verb.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "desktop/console/HarmlessText.h"

namespace kv::cli {

using namespace std::chrono_literals;

namespace {

// Prints the controller's screen, or draws it into a file; once, or each time that it changes.
class VerbScreen : public Verb {
 public:
  [[nodiscard]] const char* Name() const override { return "screen"; }
  [[nodiscard]] const char* Summary() const override { return "Show the controller's screen, as text or as a picture"; }
  [[nodiscard]] const char* Examples() const override;
  void Declare(CLI::App& app) override;
  [[nodiscard]] VerbResult Run(Environment& environment, const CommonOptions& common) override;

 private:
  [[nodiscard]] OrFailure<VerbOutput> Show(Environment& environment, TerminalPanel& panel) const;
  [[nodiscard]] OrFailure<void> Watch(Environment& environment, TerminalPanel& panel, bool json) const;
  [[nodiscard]] OrFailure<void> FetchOrTell(Environment& environment, TerminalPanel& panel) const;

  std::string mPng;
  std::string mCache;
  bool mText = false;
  bool mFetch = false;
  bool mWatch = false;
  int mCount = 0;    // screens; 0: no limit
  int mSeconds = 0;  // 0: no limit
};

constexpr int kMostScreens = 1'000'000'000;
constexpr int kMostSeconds = 31'536'000;  // a year

const char* VerbScreen::Examples() const {
  return "  kvtele --link sim:K220-22-R1 screen                   its text, and what can be pressed\n"
         "  kvtele --link sim:K220-22-R1 screen --text            its text alone\n"
         "  kvtele --link sim:K670 screen --png now.png --fetch\n"
         "                                                        a picture, with the controller's fonts and images\n"
         "  kvtele --link sim:K670 screen --png now.png --cache plant.ktc\n"
         "                                                        the same from a cache: quick on a slow line\n"
         "  kvtele --link tcp:192.168.1.20 screen --watch         each screen as it comes, until Ctrl-C\n";
}

void VerbScreen::Declare(CLI::App& app) {
  app.add_option("--png", mPng, "Draw the screen into this file, in place of printing it")->type_name("FILE");
  app.add_flag("--text", mText, "Print the texts alone, also beside a picture");
  app.add_option("--cache", mCache,
                 "Take fonts and images from this cache file. Default: the session's most recent one")
      ->type_name("FILE.ktc");
  app.add_flag("--fetch", mFetch, "Read fonts and images that the picture needs from the controller");
  auto* watch = app.add_flag("--watch", mWatch, "Do it anew each time that the screen changes");
  app.add_option("--count", mCount, "End after so many screens")
      ->check(CLI::Range(1, kMostScreens))
      ->type_name("N")
      ->needs(watch);
  app.add_option("--for", mSeconds, "End after so many seconds")
      ->check(CLI::Range(1, kMostSeconds))
      ->type_name("SECONDS")
      ->needs(watch);
}

// What of a controller's text a terminal may not see is left out, line by line.
std::string Harmless(const std::string& text) {
  return HarmlessText(text, "\n\t");
}

std::string PressableText(const panel::ScreenModel& model, const panel::ScreenResources& resources) {
  std::string lines;
  for (const panel::ScreenText& text : panel::TextsOf(model, resources)) {
    if (!text.touch) continue;
    const panel::PixelRect& area = text.place;
    const std::string where =
        text.key ? text.text : std::to_string(area.x + area.width / 2) + "," + std::to_string(area.y + area.height / 2);
    lines += where + "\t" + panel::TouchText(*text.touch) + "\n";
  }
  return lines;
}

nlohmann::ordered_json TouchJson(const panel::ScreenText& text) {
  nlohmann::ordered_json json{{"name", panel::ReadableText(text.touch->name)},
                              {"kind", panel::RoleName(text.touch->role)},
                              {"on", text.touch->isOn},
                              {"disabled", text.touch->isDisabled},
                              {"pressed", text.touch->isPressed}};
  if (text.key) {
    json["key"] = text.text;
  } else {
    json["x"] = text.place.x;
    json["y"] = text.place.y;
    json["width"] = text.place.width;
    json["height"] = text.place.height;
  }
  return json;
}

nlohmann::ordered_json ScreenJson(TerminalPanel& panel) {
  const panel::ScreenModel& model = panel.Model();
  const panel::PanelState state = panel.Session().State();
  const PanelDescription& display = model.Panel();
  nlohmann::ordered_json json{{"display", display.kind == PanelKind::Text ? "text" : "colour"},
                              {"width", display.width},
                              {"height", display.height},
                              {"page", state.page},
                              {"pageName", state.pageName},
                              {"operator", state.operatorName},
                              {"operatedAtPanel", state.isOperatedAtPanel},
                              {"systemMode", state.isSystemMode},
                              {"lines", nlohmann::ordered_json::array()},
                              {"touch", nlohmann::ordered_json::array()}};
  std::string lines = panel::PlainText(model, panel.Resources());
  for (std::string_view rest = lines; !rest.empty();) json["lines"].push_back(std::string(TakeField(rest, '\n')));
  for (const panel::ScreenText& text : panel::TextsOf(model, panel.Resources())) {
    if (text.touch) json["touch"].push_back(TouchJson(text));
  }
  return json;
}

// What the cache does not have comes from the controller, or is drawn as framed places.
OrFailure<void> VerbScreen::FetchOrTell(Environment& environment, TerminalPanel& panel) const {
  const auto taken = panel.TakeFromCache();
  if (!taken) return std::unexpected(taken.error());
  if (!*taken && !mCache.empty()) {
    return std::unexpected(NotFitFailure("drawing with " + mCache, "the cache is of another model", {},
                                         "import the fonts and images of this controller: kvtele cache import"));
  }
  if (mPng.empty()) return {};
  if (mFetch) return panel.FetchMissing();
  const std::size_t missing = panel.Session().MissingResources().size();
  if (missing == 0) return {};
  environment.err << Counted(missing, "font or image is", "fonts and images are")
                  << " missing and drawn as framed places. --fetch reads them from the controller.\n";
  return {};
}

OrFailure<VerbOutput> VerbScreen::Show(Environment& environment, TerminalPanel& panel) const {
  if (const auto ready = FetchOrTell(environment, panel); !ready) return std::unexpected(ready.error());
  VerbOutput output{"", ScreenJson(panel)};
  if (!mPng.empty()) {
    const auto saved = SavePng(PathFromUtf8(mPng), *panel.Session().Dots());
    if (!saved) {
      return std::unexpected(Failure{ExitCode::BadFile, "badFile", "saving " + mPng, saved.error().Text(), {}, {}});
    }
    output.document["png"] = mPng;
    environment.err << "The picture is in " << mPng << ".\n";
    if (!mText) return output;
  }
  output.text = Harmless(panel::PlainText(panel.Model(), panel.Resources()));
  if (mText) return output;
  const std::string pressable = PressableText(panel.Model(), panel.Resources());
  if (!pressable.empty()) output.text += "\n" + Harmless(pressable);
  return output;
}

// The same screen is shown once, however often its controller tells it.
OrFailure<void> VerbScreen::Watch(Environment& environment, TerminalPanel& panel, bool json) const {
  const Instant end = mSeconds > 0 ? environment.pacer.Now() + std::chrono::seconds(mSeconds) : Instant::max();
  std::string last;
  std::string told;
  for (int shown = 0; environment.pacer.Now() < end;) {
    if (const auto went = panel.Go(end); !went) return std::unexpected(went.error());
    const panel::PanelState state = panel.Session().State();
    if (!state.reason.empty() && !panel.MayGoOn()) return std::unexpected(panel.WhyNot());
    if (state.reason != told)
      environment.err << (state.reason.empty() ? "The screen is up to date." : state.reason) << "\n";
    told = state.reason;
    if (!state.isWhole || state.sight != panel::PanelSight::Live) continue;
    const bool hasChanged = !panel.Session().TakeChanged().empty() || last.empty();
    if (!hasChanged) continue;
    const auto output = Show(environment, panel);
    if (!output) return std::unexpected(output.error());
    const std::string text =
        json ? output->document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n"
             : output->text;
    if (text == last && mPng.empty()) continue;
    last = text;
    environment.out << text << (json || text.empty() ? "" : "\n") << std::flush;
    if (!environment.out)
      return std::unexpected(Failure{ExitCode::Failed,
                                     "output",
                                     "printing a screen",
                                     "the output takes no more",
                                     "its reader has ended, or the disk is full",
                                     {}});
    if (++shown == mCount) return {};
  }
  return {};
}

VerbResult VerbScreen::Run(Environment& environment, const CommonOptions& common) {
  auto cache = NamedCache(mCache);
  if (!cache) return std::unexpected(cache.error());
  const auto connected = ConnectedController::Open(environment, common);
  if (!connected) return std::unexpected(connected.error());
  TerminalPanel panel(environment, **connected, "kvtele screen");
  if (const auto updated = panel.Update(); !updated) return std::unexpected(updated.error());
  const bool isDrawn = !mPng.empty() && panel.Model().Panel().kind == PanelKind::Colour;
  if (isDrawn && !*cache) *cache = RecentCache(environment, common, (*connected)->Version().model);
  if (*cache) panel.UseCache(**std::move(cache));
  if (!mWatch) return Show(environment, panel);
  if (const auto ended = Watch(environment, panel, common.json); !ended) return std::unexpected(ended.error());
  return VerbOutput{};  // everything has been printed
}

}  // namespace

std::unique_ptr<Verb> MakeVerbScreen() {
  return std::make_unique<VerbScreen>();
}

}  // namespace kv::cli
