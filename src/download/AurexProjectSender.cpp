#include "download/AurexProjectSender.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "base/Texts.h"
#include "download/FileFields.h"
#include "download/FlashStatus.h"
#include "download/LongWait.h"
#include "download/OsNumber.h"
#include "link/BlockOperations.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

using namespace BlockOperation;

constexpr int kStatusSteps = 120;
constexpr const char* kWaiting = "Waiting until the controller is ready for a project";
constexpr Duration kBetweenPolls = std::chrono::milliseconds(100);

// How often the link may be lost in the middle of one topic: behind that it is no link to program a controller over.
constexpr int kMostLosses = 3;

// One number that grows with version and build: 460 and 19 are 46019.
constexpr int kBuilds = 100;

std::optional<std::int64_t> InstalledOs(const VersionInfo& version) {
  const auto number = OsNumberOf(version);
  if (!number) return std::nullopt;
  return std::int64_t{number->version} * kBuilds + number->build;
}

}  // namespace

// --- Before the download ---

AurexProjectSender::Step AurexProjectSender::CheckFits(const FoundController& controller) {
  const std::string model = ShownText(controller.version.model);
  if (IsColourModel(controller.version.model)) {
    return mWork.Refuse("The controller is a " + model +
                        ". Projects of controllers with a colour screen are not downloaded with this tool.");
  }
  if (model != mProject.model) {
    std::string text = OtherModelText(mProject.model, model);
    mWork.Tell(text, PromptIcon::Exclamation, "Warning");
    std::erase(text, '\r');
    const std::string advice = StateAdvice(controller);
    return mWork.Refuse(text + (advice.empty() ? "" : "\n" + advice));
  }
  if (mWork.link.GetDownloadEngine() == nullptr) {
    if (mWork.link.LastError().code != LinkErrorCode::NotSupported) return mWork.FailOf(mWork.link.LastError());
    return mWork.Refuse("The controller understands text commands only, and this project goes in block messages.");
  }
  return CheckOs(controller);
}

AurexProjectSender::Step AurexProjectSender::CheckOs(const FoundController& controller) {
  const auto installed = InstalledOs(controller.version);
  if (!installed) {
    return mWork.Refuse("The controller's O/S version \"" + ShownText(controller.version.osVersion) + "\", build \"" +
                        ShownText(controller.version.osBuild) +
                        "\", cannot be read, so whether the project runs with it is not known.");
  }
  const std::int64_t required = std::int64_t{mProject.osVersion} * kBuilds + mProject.osBuild;
  if (required > *installed) {
    mWork.Tell(
        "This project cannot be downloaded because the O/S currently installed in the PLC is an outdated version.",
        PromptIcon::Information, "Download error");
    return mWork.Refuse("The project needs O/S " + *NeededOs() + ", and the controller has " + controller.OsText() +
                        ". Download a newer O/S first.");
  }
  if (required < *installed) {
    mWork.Tell("Note that the O/S currently installed in the PLC is higher than the O/S in project being downloaded",
               PromptIcon::Information, "Note");
  }
  return {};
}

ProjectSender::Traffic AurexProjectSender::Amount() const {
  constexpr std::uint64_t kAroundMessage = 32;  // head and check, of each request and each reply
  constexpr std::uint64_t kOthers = 10;         // stop, password, status and the like
  constexpr std::uint64_t kBytesOfOther = 100;
  const std::uint64_t topics = mProject.topics.size();
  return {.content = mProject.dataBytes,
          .bytes = mProject.dataBytes + 2 * kAroundMessage * topics + kOthers * kBytesOfOther,
          .exchanges = topics + kOthers};
}

std::optional<std::string> AurexProjectSender::NeededOs() const {
  return VersionText({.version = mProject.osVersion, .build = mProject.osBuild}) + " (B" +
         (mProject.osBuild < 10 ? "0" : "") + std::to_string(mProject.osBuild) + ") or newer";
}

// --- The download ---

AurexProjectSender::Step AurexProjectSender::Send() {
  using Stage = Step (AurexProjectSender::*)();
  constexpr Stage kStages[] = {&AurexProjectSender::StopProgram, &AurexProjectSender::BeginProject,
                               &AurexProjectSender::SendTopics, &AurexProjectSender::Program,
                               &AurexProjectSender::Reset};
  for (const Stage stage : kStages) {
    if (Step done = (this->*stage)(); !done) return done;
  }
  mWork.window.ResetProgress(1);
  mWork.window.SetStatus("");
  return {};
}

AurexProjectSender::Step AurexProjectSender::StopProgram() {
  Step done = mWork.Do(ControllerLeft::Stopped, [this]() -> Step {
    return mWork.WhileBusy([this]() -> Step {
      if (mWork.link.StopController(mWork.link.UnitID())) return {};
      return mWork.FailOf(mWork.link.LastError());
    });
  });
  if (!done) return done;
  if (done = mWork.TellOfStopMode(); !done) return done;
  if (done = mWork.StopPoint(); !done) return done;
  if (auto announced = mWork.WhileBusy([this] { return mWork.Send("PV000A"); }); !announced)
    return std::unexpected(announced.error());
  return mWork.StopPoint();
}

AurexProjectSender::Step AurexProjectSender::BeginProject() {
  mWork.window.SetStatus("Send project password ...");
  Step done =
      mWork.Do(ControllerLeft::ProjectBegun, [this] { return SendRepeatable(kBeginDownload, mProject.passwordBlock); });
  if (done) done = WaitForIdle(false);
  if (done) done = SendRepeatable(kConfirmPassword, mProject.passwordBlock);
  return done ? mWork.StopPoint() : done;
}

AurexProjectSender::Step AurexProjectSender::SendTopics() {
  mWork.window.SetStatus("Send project topics ...");
  mWork.window.ResetProgress(std::max<std::int64_t>(1, mProject.announcedTopics));
  std::uint64_t bytes = 0;
  for (const AurexProjectTopic& topic : mProject.topics) {
    if (Step done = SendTopic(topic); !done) return done;
    ++mSent;
    bytes += topic.data.size();
    if (mSent <= mProject.announcedTopics) mWork.window.StepProgress();
    mWork.window.AmountSent(bytes, mProject.dataBytes);
    mWork.pacer.DoEvents();
    if (Step done = mWork.StopPoint(); !done) return done;
  }
  return CheckAllArrived();
}

// The last moment at which the old project is still there.
AurexProjectSender::Step AurexProjectSender::CheckAllArrived() {
  const auto status = AskStatus();
  if (!status) return std::unexpected(status.error());
  const std::uint8_t count = (*status)[FlashStatus::kTopicCount];
  const auto sent = static_cast<std::uint8_t>(mSent);
  if (count == sent) return {};
  const std::string text = "All was sent, but the controller has not kept it: it counts " + std::to_string(count) +
                           " topics instead of " + std::to_string(sent) +
                           " (up to 255 and from 0 again). It was not told to program them.";
  mWork.Tell(text + "\n" + std::string(LeftBehindText(mWork.left)), PromptIcon::Exclamation);
  return mWork.Fail(DownloadCause::Differs, text);
}

// A topic that arrives twice would be kept twice. When a stop or a lost connection has ended the exchange and the
// download can go on, the controller tells whether it has the topic: it counts them.
AurexProjectSender::Step AurexProjectSender::SendTopic(const AurexProjectTopic& topic) {
  const auto expected = static_cast<std::uint8_t>(mSent + 1);
  int losses = 0;
  while (true) {
    const BlockFields fields{.opCode = kDownloadData,
                             .param1 = topic.param1,
                             .dataLength = static_cast<std::uint32_t>(topic.data.size()),
                             .param3 = topic.param3,
                             .param4 = topic.param4};
    const auto sent = SendBlock(fields, topic.data);
    if (sent) return {};
    const bool isUnsure = sent.error().link.code == LinkErrorCode::Unsure && losses++ < kMostLosses;
    if (!isUnsure && !mWork.GoesOnAfter(sent.error())) return std::unexpected(sent.error());
    const auto status = AskStatus();
    if (!status) return std::unexpected(isUnsure ? sent.error() : status.error());
    const std::uint8_t count = (*status)[FlashStatus::kTopicCount];
    if (count == expected) return {};
    if (count != static_cast<std::uint8_t>(expected - 1)) {
      return mWork.Fail(DownloadCause::Reply, "The controller has not kept what it was sent before: it has restarted.");
    }
  }
}

AurexProjectSender::Step AurexProjectSender::Program() {
  mWork.window.SetStatus("Programing flash and memory ...");
  Step done = mWork.Do(ControllerLeft::Programming, [this]() -> Step {
    const auto sent = SendBlock({.opCode = kProgram});
    if (!sent) return std::unexpected(sent.error());
    return {};
  });
  if (done) done = WaitForIdle(true);
  if (done) mWork.left = ControllerLeft::ProjectWaits;
  return done;
}

AurexProjectSender::Step AurexProjectSender::Reset() {
  mWork.Tell("The controller is about to Reset.", PromptIcon::Exclamation);
  return mWork.Do(ControllerLeft::ProjectPerhaps, [this]() -> Step {
    return mWork.WhileBusy([this]() -> Step {
      if (mWork.link.ResetController(mWork.link.UnitID())) return {};
      return mWork.FailOf(mWork.link.LastError());
    });
  });
}

// --- The status wait ---

// Without a limit: only the controller knows how long its flash takes. The user can stop it.
AurexProjectSender::Step AurexProjectSender::WaitForIdle(bool isWhole) {
  mWork.window.ResetProgress(kStatusSteps);
  LongWait wait(mWork, isWhole ? "that the new project is programmed" : "that it is ready for a project");
  for (int step = 0;;) {
    const auto status = AskStatus();
    if (!status) return std::unexpected(status.error());
    if (isWhole && (*status)[FlashStatus::kFlashError] != 0) return FlashFailed(*status);
    const bool isIdle = (*status)[FlashStatus::kActivity] == FlashStatus::kIdle;
    const bool isOver = isIdle && (!isWhole || (*status)[FlashStatus::kIsWhole] != 0);
    mWork.window.Waiting(isWhole ? "Programmed: " + std::to_string((*status)[FlashStatus::kPercent]) + " %" : kWaiting,
                         isOver);
    if (isOver) return {};
    if (isIdle) {
      if (Step loads = CheckStillLoads(); !loads) return loads;
    }
    mWork.pacer.DoEvents();
    mWork.pacer.Sleep(kBetweenPolls);
    wait.Polled();
    mWork.window.StepProgress();
    if (++step == kStatusSteps) {
      mWork.window.ResetProgress(kStatusSteps);
      step = 0;
    }
    if (Step stopped = mWork.StopPoint(); !stopped) return stopped;
  }
}

AurexProjectSender::Step AurexProjectSender::FlashFailed(const Bytes& status) {
  mWork.left = ControllerLeft::FlashFailed;
  return mWork.Fail(DownloadCause::Reply, "The controller reports a flash error (" +
                                              std::to_string(status[FlashStatus::kFlashError]) +
                                              ") while it programs the project. It was not told to restart.");
}

// Idle, and nothing whole in it: it never will be when the controller has restarted meanwhile and dropped it all.
AurexProjectSender::Step AurexProjectSender::CheckStillLoads() {
  const auto info = mWork.link.GetControllerInfo(mWork.link.UnitID());
  if (!info) return mWork.FailOf(mWork.link.LastError());
  if (info->state == 'L') return {};
  const std::string project = ShownText(info->projectName);
  return mWork.Fail(
      DownloadCause::Reply,
      "The controller has left the download before it said that what it received is whole; " +
          (project.empty() ? std::string("it has no project now.") : "its project is now \"" + project + "\".") +
          "\nLikely cause: it lost its power, or somebody else has reset it.\nWhat to do: download "
          "again.");
}

std::expected<Bytes, DownloadOutcome> AurexProjectSender::SendBlock(const BlockFields& fields,
                                                                    std::span<const std::uint8_t> data) {
  return mWork.WhileBusy([&] { return mWork.SendBlock(fields, data); });
}

std::expected<Bytes, DownloadOutcome> AurexProjectSender::AskStatus() {
  while (true) {
    auto status = SendBlock({.opCode = kStatus, .dataLength = FlashStatus::kLength});
    if (status && status->size() < FlashStatus::kShortest) {
      return mWork.Fail(DownloadCause::Reply, "The controller's status has " + Counted(status->size(), "byte") +
                                                  " instead of " + std::to_string(FlashStatus::kLength) + ".");
    }
    if (status || !mWork.GoesOnAfter(status.error())) return status;
  }
}

AurexProjectSender::Step AurexProjectSender::SendRepeatable(std::uint16_t operation,
                                                            std::span<const std::uint8_t> data) {
  return mWork.DoRepeatable([&]() -> Step {
    const auto sent = SendBlock({.opCode = operation}, data);
    if (!sent) return std::unexpected(sent.error());
    return {};
  });
}

}  // namespace kv
