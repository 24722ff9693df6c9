#include "download/AurexOsSender.h"

#include <algorithm>
#include <chrono>

#include "download/FlashStatus.h"
#include "link/BlockOperations.h"
#include "link/ErrorMeaning.h"

namespace kv {
namespace {

using std::chrono::milliseconds;

// Title of boxes that have none of their own.
constexpr std::string_view kTelepanel = "Telepanel";

constexpr Duration kPoll = milliseconds(200);
constexpr Duration kLongestWait = milliseconds(300'000);

constexpr std::uint16_t kLastSequence = 255;
constexpr int kNotTogetherCode = 0x0F;

constexpr BlockFields kStatusRequest{
    .opCode = BlockOperation::kStatus, .param1 = 0, .dataLength = FlashStatus::kLength, .param3 = 0, .param4 = 0};

// A reply that is too short tells of no state, and counts as one of a controller that is not idle.
AurexOsSender::Status StatusIn(const Bytes& reply) {
  using namespace FlashStatus;
  if (reply.size() < kShortest || reply[0] != 'R') return {};
  return {.isIdle = reply[kActivity] == kIdle,
          .hasFlashError = reply[kFlashError] != 0,
          .hasTopic = reply[kIsWhole] != 0,
          .percent = std::min<int>(reply[kPercent], 100),
          .isProgrammed = reply.size() > kIsProgrammed && reply[kIsProgrammed] != 0};
}

// After these the same request on the same link cannot succeed, whatever the user does meanwhile.
bool IsFinal(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == OtherController || code == Closed || code == NotSupported || code == BadArgument;
}

}  // namespace

AurexOsSender::Step AurexOsSender::Prepare() {
  mDoing = "getting the boot loader ready";
  constexpr BlockFields kFirst{
      .opCode = BlockOperation::kPrepare, .param1 = 84, .dataLength = 255, .param3 = 255, .param4 = 0};
  constexpr BlockFields kSecond{
      .opCode = BlockOperation::kPrepareAgain, .param1 = 1, .dataLength = 1000, .param3 = 0, .param4 = 0};
  for (const BlockFields& fields : {kFirst, kSecond}) {
    mEngine.SetMessage(fields);
    if (auto sent = SendWithRetry(); !sent) return sent;
  }
  return {};
}

AurexOsSender::Step AurexOsSender::Send(const OsTransfer& transfer) {
  mSent = 0;
  mToSend = StreamBytes(transfer);
  if (auto sent = SendHeader(transfer.header); !sent) return sent;
  const std::string count = std::to_string(transfer.topics.size());
  for (int phase = 1; const OsTransferTopic& topic : transfer.topics) {
    mWork.window.SetStatus("Sending " + topic.name + " (" + std::to_string(phase) + " of " + count + ") ...");
    if (auto sent = SendTopic(topic, phase++); !sent) return sent;
  }
  return {};
}

AurexOsSender::Step AurexOsSender::SendHeader(const OsTransferHeader& header) {
  mDoing = "beginning the transfer of the O/S";
  mEngine.SetMessage({.opCode = BlockOperation::kDownloadData,
                      .param1 = 0,
                      .dataLength = static_cast<std::uint32_t>(header.size()),
                      .param3 = 0,
                      .param4 = 0});
  return SendWithRetry(header);
}

AurexOsSender::Step AurexOsSender::SendTopic(const OsTransferTopic& topic, int phase) {
  const std::span<const std::uint8_t> stream(topic.stream);
  const std::size_t count = (stream.size() + kOsChunk - 1) / kOsChunk;
  std::uint16_t sequence = 0;
  for (std::size_t chunk = 0; chunk < count; ++chunk) {
    mWork.window.ProgressInfo(phase, static_cast<std::int64_t>(chunk + 1), static_cast<std::int64_t>(count));
    mDoing = "sending chunk " + std::to_string(chunk + 1) + " of " + std::to_string(count) + " of " + topic.name;
    const std::size_t offset = chunk * kOsChunk;
    const auto data = stream.subspan(offset, std::min(kOsChunk, stream.size() - offset));
    sequence = sequence == kLastSequence ? 1 : static_cast<std::uint16_t>(sequence + 1);
    mEngine.SetMessage({.opCode = BlockOperation::kDownloadData,
                        .param1 = topic.base + static_cast<std::uint32_t>(offset),
                        .dataLength = static_cast<std::uint32_t>(data.size()),
                        .param3 = sequence,
                        .param4 = static_cast<std::uint16_t>(topic.number)});
    if (auto sent = SendWithRetry(data); !sent) return sent;
    mSent += data.size();
    mWork.window.AmountSent(mSent, mToSend);
  }
  mDoing = "checking " + topic.name;
  return WaitUntilIdle(TopicCheck::On);
}

// Twice is refused. So when its answer was lost, the controller is waited for before it is told again, and its refusal
// then means that it has been told: all topics have been found whole. What it reports after the reset proves it.
AurexOsSender::Step AurexOsSender::Program() {
  mDoing = "programming the O/S";
  mIsProgramming = true;
  mWork.window.SetStatus("Programming the O/S ...");
  mEngine.SetMessage({.opCode = BlockOperation::kProgram, .param1 = 0, .dataLength = 0, .param3 = 0, .param4 = 0});
  const ControllerLeft before = mWork.left;
  for (bool mayBeTold = false;;) {
    if (auto goesOn = mWork.StopPoint(); !goesOn) return goesOn;
    mWork.left = ControllerLeft::OsProgramming;
    const auto reply = SendOnce({});
    if (!reply) return std::unexpected(reply.error());
    if (*reply == Reply::Taken || (mayBeTold && IsRefusedAsDouble())) break;
    const bool isAnswered = *reply == Reply::Busy || *reply == Reply::Refused;
    mayBeTold = mayBeTold || !isAnswered;
    if (!mayBeTold) mWork.left = before;
    if (*reply != Reply::Interrupted) {
      if (auto again = AskForRetry(*reply); !again) return again;
    }
    if (!mayBeTold) continue;
    if (auto idle = WaitUntilIdle(TopicCheck::Off); !idle) return idle;
  }
  // What it received is gone when its power has failed meanwhile, and its O/S with it.
  if (auto idle = WaitUntilIdle(TopicCheck::On); !idle) return idle;
  constexpr int kAll = 100;
  mWork.window.Programmed(kAll);
  mWork.left = ControllerLeft::OsWaits;
  return {};
}

AurexOsSender::Step AurexOsSender::SendWithRetry(std::span<const std::uint8_t> data) {
  while (true) {
    const auto reply = SendOnce(data);
    if (!reply) return std::unexpected(reply.error());
    if (*reply == Reply::Taken) return {};
    if (*reply == Reply::Interrupted) continue;
    if (auto again = AskForRetry(*reply); !again) return again;
  }
}

// Interrupted: by a stop, which the user is asked about before the next message.
std::expected<AurexOsSender::Reply, DownloadOutcome> AurexOsSender::SendOnce(std::span<const std::uint8_t> data) {
  mWork.pacer.DoEvents();
  if (auto goesOn = mWork.StopPoint(); !goesOn) return std::unexpected(goesOn.error());
  if (!(data.empty() ? mEngine.Send() : mEngine.SendWithData(data))) {
    const bool isStop = mWork.link.LastError().code == LinkErrorCode::Stopped && mWork.pacer.StopRequested();
    return isStop ? Reply::Interrupted : Reply::Unanswered;
  }
  switch (mEngine.ReplyStatus()) {
    case kBlockDone:
    case kBlockDoneProgramming:
    case kBlockTakesEffectWithReset:
      return Reply::Taken;
    case kBlockBusy:
      return Reply::Busy;
    default:
      return Reply::Refused;
  }
}

bool AurexOsSender::IsRefusedAsDouble() const {
  return mEngine.ReplyStatus() == kBlockRefused + kNotTogetherCode;
}

// Done: it is to be sent again.
AurexOsSender::Step AurexOsSender::AskForRetry(Reply reply) {
  const auto failed = reply == Reply::Unanswered ? LinkFailure() : Refused();
  if (reply == Reply::Busy) {
    mWork.Tell(
        "The PLC is currently busy processing download tasks. Please wait a few minutes before re-attempting this "
        "operation.",
        PromptIcon::Information, kTelepanel);
    return failed;
  }
  const LinkErrorCode code = failed.error().link.code;
  if (IsFinal(code)) return failed;
  MessageBox box{
      .text = "PLC does not respond.\r\nRetry?", .icon = PromptIcon::Exclamation, .buttons = PromptButtons::YesNo};
  if (reply == Reply::Refused && HasRestarted()) {
    return ReplyFailure("the controller has restarted and runs its O/S again, so that what was sent is gone");
  }
  if (reply == Reply::Refused) {
    box.text = "Failed to send data chunk.\r\nRetry?";
    box.icon = PromptIcon::None;
  }
  if (mWork.PromptsOf(DownloadQuestion::Retry).Show(box) != PromptAnswer::Yes) return failed;
  // A link that does not come back by itself is opened again; what comes of it shows with the next message.
  if (MayMeanLostLink(code)) static_cast<void>(mWork.link.OpenLink(0, 0));
  return {};
}

AurexOsSender::Step AurexOsSender::WaitUntilIdle(TopicCheck check) {
  const BlockFields before = mEngine.Message();
  const Instant start = mWork.pacer.Now();
  while (mWork.pacer.Now() - start <= kLongestWait) {
    mEngine.SetMessage(kStatusRequest);
    if (auto sent = SendWithRetry(); !sent) return sent;
    mLast = StatusIn(mEngine.ReplyBytes());
    const auto isIdle = CheckStatus(mLast, check);
    if (!isIdle) return std::unexpected(isIdle.error());
    if (*isIdle) {
      mEngine.SetMessage(before);
      return {};
    }
    mWork.pacer.Sleep(kPoll);
  }
  mWork.Tell("ERR_NUM_FLASH_AND_MEMORY_NOT_IDLE", PromptIcon::None, kTelepanel);
  return ReplyFailure("its flash was still at work after 5 minutes");
}

// Whether the controller is idle.
std::expected<bool, DownloadOutcome> AurexOsSender::CheckStatus(const Status& status, TopicCheck check) {
  if (!status.isIdle) {
    if (mIsProgramming) mWork.window.Programmed(status.percent);
    return false;
  }
  if (status.hasFlashError) {
    if (mIsProgramming) mWork.left = ControllerLeft::BootLoaderErased;
    mWork.Tell("ERR_NUM_FLASH_ERROR", PromptIcon::None, kTelepanel);
    return ReplyFailure("the controller reports an error of its flash");
  }
  if (check == TopicCheck::On && !status.hasTopic) {
    mWork.Tell("ERR_NUM_INVALID_TOPIC_FROM_PLC", PromptIcon::None, kTelepanel);
    return ReplyFailure("the controller does not hold what was sent any more");
  }
  return true;
}

std::optional<AurexOsSender::Status> AurexOsSender::AskStatus(Channel& link) {
  DownloadEngine* engine = link.GetDownloadEngine();
  if (engine == nullptr) return std::nullopt;
  engine->SetMessage(kStatusRequest);
  if (!engine->Send()) return std::nullopt;
  return StatusIn(engine->ReplyBytes());
}

std::unexpected<DownloadOutcome> AurexOsSender::LinkFailure() const {
  auto failed = mWork.FailOf(mWork.link.LastError());
  failed.error().reason = "It failed while " + mDoing + ".\n" + failed.error().reason;
  return failed;
}

std::unexpected<DownloadOutcome> AurexOsSender::ReplyFailure(const std::string& reason) const {
  return mWork.Fail(DownloadCause::Reply, "It failed while " + mDoing + ": " + reason + ".");
}

std::unexpected<DownloadOutcome> AurexOsSender::Refused() const {
  auto refusal = RefusalOf(mEngine.ReplyStatus()).value_or(LinkError());
  refusal.doing = mDoing;
  return mWork.FailOf(refusal, DownloadCause::Reply);
}

// Its power has failed, or somebody has reset it: sending again cannot succeed.
bool AurexOsSender::HasRestarted() const {
  const auto info = mWork.link.GetControllerInfo(mWork.link.UnitID());
  return info && info->state != 'B';
}

}  // namespace kv
