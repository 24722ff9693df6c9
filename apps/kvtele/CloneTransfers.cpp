#include "apps/kvtele/CloneTransfers.h"

#include <algorithm>
#include <system_error>

#include "apps/kvtele/CloneReports.h"
#include "apps/kvtele/Connection.h"
#include "apps/kvtele/Prompting.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/DumpProgress.h"
#include "clone/clsDumpPLC.h"
#include "desktop/PacerWallClock.h"

namespace kv::cli {

namespace {

constexpr Duration kBetweenLines = std::chrono::milliseconds(100);

// The cloner's window on the terminal: one line of progress, and before each box of the engine it makes room.
class TerminalCloner final : public DumpWindow, public Prompts {
 public:
  TerminalCloner(Environment& environment, const CommonOptions& common, const SegmentBoxes& boxes)
      : mPacer(environment.pacer),
        mBoxes(boxes),
        mPrompts(PromptsFor(environment, common)),
        mLine(environment),
        mProgress(environment.pacer) {}

  void FillSegments(std::span<const CloneSegment> segments) override { mProgress.FillSegments(segments, mBoxes); }
  void Event_SegmentIndex(int index) override { mProgress.SegmentIndex(index); }
  void Event_ProgressBarInit(std::int64_t, std::int64_t maximum) override { mProgress.ProgressBarInit(maximum); }
  void Event_ProgressBarValue(std::int64_t value) override {
    mProgress.ProgressBarValue(value);
    if (mPacer.Now() < mNextLine) return;
    mNextLine = mPacer.Now() + kBetweenLines;
    mLine.Show(mProgress.Text());
  }
  void Event_AddWriteCommand(std::string_view) override {}
  void Event_Refresh() override {}
  [[nodiscard]] SegmentBoxes CheckedSegments() const override { return mBoxes; }

  PromptAnswer Show(const MessageBox& box) override {
    mLine.Wipe();
    return mPrompts.Show(box);
  }
  [[nodiscard]] std::optional<std::string> Ask(const InputBox& box) override {
    mLine.Wipe();
    return mPrompts.Ask(box);
  }
  [[nodiscard]] std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  [[nodiscard]] std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }

 private:
  Pacer& mPacer;
  SegmentBoxes mBoxes;
  ConsolePrompts mPrompts;
  TerminalLine mLine;
  DumpProgress mProgress;
  Instant mNextLine{};
};

std::expected<SegmentBoxes, Failure> ParseSegments(const std::string& codes) {
  if (codes.empty()) return SegmentBoxes();
  SegmentBoxes boxes{.op = false, .dt = false, .ap = false, .os = false};
  for (std::size_t at = 0; at <= codes.size();) {
    const std::size_t end = std::min(codes.find(',', at), codes.size());
    const std::string code = codes.substr(at, end - at);
    at = end + 1;
    if (code == "OP")
      boxes.op = true;
    else if (code == "DT")
      boxes.dt = true;
    else if (code == "AP")
      boxes.ap = true;
    else if (code == "OS")
      boxes.os = true;
    else if (code != "HW" && code != "FT" && code != "MM") {
      return std::unexpected(UsageFailure("there is no segment \"" + code + "\"",
                                          "name some of OP,DT,AP,OS with commas between; HW,FT,MM are always taken"));
    }
  }
  return boxes;
}

Failure NotConfirmed(std::string doing) {
  return {
      ExitCode::Failed, "notConfirmed", std::move(doing), "it was not confirmed", {}, "answer with yes, or give --yes"};
}

// Asks, and says why it goes on or not.
std::expected<void, Failure> Confirm(Environment& environment, const CommonOptions& common, const std::string& question,
                                     const std::string& doing) {
  const auto answer = PromptsFor(environment, common)
                          .Show({.text = question,
                                 .title = std::string(kClonerCaption),
                                 .icon = PromptIcon::Question,
                                 .buttons = PromptButtons::YesNo});
  if (environment.pacer.StopRequested()) return std::unexpected(InterruptedFailure(doing));
  if (answer != PromptAnswer::Yes) return std::unexpected(NotConfirmed(doing));
  return {};
}

// What can be said before the controller is touched, and before a file that stands there is replaced.
std::expected<SegmentBoxes, Failure> CheckCreate(Environment& environment, const CommonOptions& common,
                                                 const std::filesystem::path& file, const std::string& segments) {
  const auto boxes = ParseSegments(segments);
  if (!boxes) return boxes;
  if (!common.password && !environment.input.IsInteractive()) {
    return std::unexpected(UsageFailure("the controller's password is missing",
                                        "give it with --password; a controller without a password takes any"));
  }
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) return boxes;
  const auto confirmed =
      Confirm(environment, common, Utf8FromPath(file) + " exists. Replace it?", "creating " + Utf8FromPath(file));
  if (!confirmed) return std::unexpected(confirmed.error());
  return boxes;
}

std::expected<CloneInfo, Failure> Inspect(Environment& environment, const std::filesystem::path& file,
                                          const RestoreOrder& order) {
  const std::string doing = "looking through the clone file";
  const auto info = [&] {
    const WatchedWork watched(environment);
    return InspectClone(file, watched.Work());
  }();
  if (!info) return std::unexpected(CloneFailure(doing, info.error()));
  if (info->IsSound() || order.force) return *info;
  return std::unexpected(Failure{ExitCode::BadFile, "badFile", doing,
                                 "it is damaged: " + info->damages.front().Text() + "; nothing was sent", "",
                                 "see kvtele clone info; --force restores it all the same"});
}

std::expected<void, Failure> CheckFits(Environment& environment, const CloneInfo& info, const Connection& controller,
                                       const RestoreOrder& order) {
  const auto findings = FindingsBeforeRestore(info, controller.Version(), controller.Unit());
  std::string told;
  for (const std::string& finding : findings) {
    if (order.force) environment.err << "Warning: " << finding << "\n";
    told += (told.empty() ? "" : " ") + finding;
  }
  if (told.empty() || order.force) return {};
  return std::unexpected(NotFitFailure("restoring the clone file", told + " Nothing was sent", "",
                                       "choose another file or controller; --force restores it all the same"));
}

std::expected<void, Failure> Send(Environment& environment, const CommonOptions& common, Connection& controller,
                                  const std::filesystem::path& file) {
  Channel& link = controller.Link();
  if (common.password && !link.GiveAccess(*common.password, controller.Unit())) {
    return std::unexpected(controller.LastFailure());
  }
  SerialPortObject* port = link.GetSerialPort();
  if (port == nullptr) return std::unexpected(controller.LastFailure());
  const PacerWallClock clock;
  TerminalCloner window(environment, common, {});
  clsDumpPLC engine(window, window, environment.pacer, clock);
  engine.RestoreGhost(*port, file, &link);
  if (engine.Outcome().end == CloneEnd::Done) return {};
  return std::unexpected(CloneFailure("restoring " + Utf8FromPath(file), engine.Outcome()));
}

}  // namespace

Outcome CreateClone(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
                    const std::string& segments) {
  const auto boxes = CheckCreate(environment, common, file, segments);
  if (!boxes) return std::unexpected(boxes.error());
  const auto controller = Connection::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  const PacerWallClock clock;
  {
    TerminalCloner window(environment, common, *boxes);
    clsDumpPLC engine(window, window, environment.pacer, clock);
    engine.CreateGhost((*controller)->Link(), file);
    if (engine.Outcome().end != CloneEnd::Done) {
      return std::unexpected(CloneFailure("creating " + Utf8FromPath(file), engine.Outcome()));
    }
  }
  auto report = ReportClone(environment, file);
  if (report) report->text.clear();  // the engine has said that it is done
  return report;
}

Outcome RestoreClone(Environment& environment, const CommonOptions& common, const std::filesystem::path& file,
                     const RestoreOrder& order) {
  const auto info = Inspect(environment, file, order);
  if (!info) return std::unexpected(info.error());
  const auto controller = Connection::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  if (const auto fits = CheckFits(environment, *info, **controller, order); !fits) return std::unexpected(fits.error());
  const std::string question = "The memory of the controller (" + AnsiToUtf8((*controller)->Version().model) + ", " +
                               (*controller)->Description() + ") is about to be overwritten, Continue?";
  const auto confirmed = Confirm(environment, common, question, "restoring " + Utf8FromPath(file));
  if (!confirmed) return std::unexpected(confirmed.error());
  if (const auto sent = Send(environment, common, **controller, file); !sent) return std::unexpected(sent.error());
  if (order.verify) return CompareWithController(environment, **controller, file);
  environment.err << "A restore is not read back by itself. Compare with: kvtele clone verify " << Utf8FromPath(file)
                  << "\n";
  return Answer{"", {{"restored", Utf8FromPath(file)}, {"lines", info->frames}}};
}

}  // namespace kv::cli
