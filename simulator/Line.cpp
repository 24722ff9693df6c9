#include "simulator/Line.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "simulator/LineSpeed.h"

namespace sim {
namespace {

std::string_view CommandOf(const FrameReader::Message& message) {
  const auto* frame = std::get_if<AsciiFrame>(&message.content);
  return frame ? frame->text.substr(0, 2) : kBlockCommand;
}

std::optional<kv::Instant> Earlier(std::optional<kv::Instant> one, std::optional<kv::Instant> other) {
  if (!one || !other) return one ? one : other;
  return std::min(*one, *other);
}

}  // namespace

Line::Line(std::shared_ptr<RequestHandler> handler)
    : mHandler(std::move(handler)), mReader(mHandler->TheController().UnderstandsBlocks()) {}

bool Line::Connect(kv::Instant now) {
  if (mConnected) Disconnect(now);
  mConnected = mHandler->TakesConnectionsAt(now);
  return mConnected;
}

void Line::Disconnect(kv::Instant now) {
  Run(now);  // what arrived before is still executed
  Drop();
}

void Line::Write(std::string_view bytes, kv::Instant now) {
  if (!mConnected) return;
  Run(now);  // what came before may change the speed
  const int baud = mHandler->Baud();
  const Pace pace = PaceAt(baud);
  if (mClientBaud == 0 && pace.IsAtOnce() && !mToController.NextArrival()) {  // nothing waits on the way
    mReader.Feed(bytes, now);
    HandleMessages(now);
    return;
  }
  mToController.Send(HeardAt(std::string(bytes), mClientBaud, baud), now, pace);
  Run(now);
}

std::string Line::Read(kv::Instant now) {
  if (!mConnected) return {};
  Run(now);
  std::string bytes = mToClient.Take(now);
  if (mCutAt && *mCutAt <= now) Drop();
  return bytes;
}

std::optional<kv::Instant> Line::NextEvent() const {
  if (!mConnected) return std::nullopt;
  const auto atController = Earlier(mToController.NextArrival(), mReader.Deadline());
  return Earlier(atController, Earlier(mToClient.NextArrival(), mCutAt));
}

void Line::Run(kv::Instant now) {
  while (true) {
    const auto arrival = mToController.NextArrival();
    const auto deadline = mReader.Deadline();
    if (deadline && *deadline <= now && (!arrival || *deadline <= *arrival)) {
      HandleMessages(*deadline);
    } else if (const auto arrived = mToController.TakeFirst(now)) {
      mReader.Feed(arrived->bytes, arrived->at);
      HandleMessages(arrived->at);
    } else {
      return;
    }
  }
}

void Line::HandleMessages(kv::Instant now) {
  while (const auto message = mReader.Next(now)) Handle(*message, now);
}

void Line::Handle(const FrameReader::Message& message, kv::Instant now) {
  if (mCutAt || !mHandler->AnswersAt(now) || !IsForUs(message)) return;
  const FaultPlan plan = mHandler->FaultRules().PlanFor(CommandOf(message));
  if (!IsStopped(message, plan, now)) Answer(message, plan, now);
}

bool Line::IsForUs(const FrameReader::Message& message) const {
  const std::uint8_t unit = mHandler->TheController().Unit();
  if (const auto* frame = std::get_if<AsciiFrame>(&message.content)) {
    return frame->unit == unit && IsRequestSound(*frame);
  }
  const auto& block = std::get<BlockMessage>(message.content);
  return block.unit == unit && block.kind == BlockMessage::Request;
}

bool Line::IsStopped(const FrameReader::Message& message, const FaultPlan& plan, kv::Instant now) {
  if (plan.requestDamage && message.position >= mAlreadyDamaged) {
    mAlreadyDamaged = message.position + message.bytes.size();
    mReader.ReadAgain(message, mHandler->FaultRules().Damaged(message.bytes, *plan.requestDamage));
    return true;
  }
  if (plan.loss && plan.loss->isBeforeRequest) {
    Cut(plan, now);
    return true;
  }
  if (plan.resets) mHandler->Restart(now);
  return plan.resets;
}

void Line::Answer(const FrameReader::Message& message, const FaultPlan& plan, kv::Instant now) {
  if (const auto* block = std::get_if<BlockMessage>(&message.content)) {
    Send(mHandler->AnswerBlock(*block, mClient, plan, now), message.bytes, plan, now);
    return;
  }
  RequestHandler::Answer answer = mHandler->AnswerText(std::get<AsciiFrame>(message.content), mClient, plan, now);
  Send(std::move(answer.bytes), message.bytes, plan, now);
  if (answer.newBaud) mHandler->SetBaud(*answer.newBaud);
  if (answer.resets) mHandler->BeginReset(std::max(now, mToClient.End()));
}

void Line::Send(std::string reply, std::string_view request, const FaultPlan& plan, kv::Instant now) {
  Faults& faults = mHandler->FaultRules();
  if (plan.isEchoed) SendToClient(std::string(request), now, {});
  if (plan.garbage) {
    const Pace noisePace{1'000'000, plan.garbage->bytesASecond};
    if (plan.garbage->bytes == 0) return mToClient.Jam(faults.RandomSeed(), now, noisePace);
    mToClient.Send(faults.RandomBytes(plan.garbage->bytes), now, noisePace);
  }
  if (plan.replyDamage) reply = faults.Damaged(reply, *plan.replyDamage);
  if (plan.isUnanswered) reply.clear();
  if (plan.cutAfter) reply.resize(std::min(reply.size(), *plan.cutAfter));
  if (plan.loss) reply.resize(std::min(reply.size(), plan.loss->at));
  const kv::Instant start = now + plan.delay;
  if (plan.isDoubled) SendToClient(reply, start, plan.gap);
  SendToClient(std::move(reply), start, plan.gap);
  if (plan.loss) Cut(plan, std::max(start, mToClient.End()));
}

void Line::SendToClient(std::string bytes, kv::Instant from, kv::Duration gap) {
  const Pace pace = Slower(PaceAt(mClientBaud), Pace::WithGap(gap));
  mToClient.Send(HeardAt(std::move(bytes), mHandler->Baud(), mClientBaud), from, pace);
}

Pace Line::PaceAt(int baud) const {
  const int usual = mHandler->UsualBaud();
  if (usual == 0) return {};  // no speed is imitated
  return Pace::AtBaud(mClientBaud == 0 ? usual : baud);
}

void Line::Cut(const FaultPlan& plan, kv::Instant at) {
  mCutAt = at;
  mHandler->StayAwayUntil(at + plan.loss->away);
}

void Line::Drop() {
  mHandler->TheController().EndConnection(mClient.connection);
  mConnected = false;
  mToController.Clear();
  mToClient.Clear();
  mReader.Clear();
  mClient = {};
  mCutAt.reset();
}

}  // namespace sim
