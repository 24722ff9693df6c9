#include "simulator/RequestHandler.h"

#include <algorithm>
#include <random>
#include <utility>

#include "base/Crc32.h"
#include "base/Hex.h"
#include "base/ScopeGuard.h"
#include "simulator/HexText.h"

namespace sim {
namespace {

constexpr std::size_t kSyncRequestSize = 14;  // SY, tag, check
constexpr std::size_t kSyncTagEnd = 6;
constexpr std::size_t kRememberedReply = 40;  // characters
constexpr int kBlockBusy = 5;
constexpr int kBlockRefused = 128;

std::string EncodeReply(const BlockMessage& request, std::uint8_t unit, const BlockReply& reply) {
  BlockMessage message = request;
  message.kind = BlockMessage::Reply;
  message.unit = unit;
  message.status = static_cast<std::uint8_t>(reply.status);
  message.payload = reply.payload;
  return EncodeBlock(message);
}

}  // namespace

RequestHandler::RequestHandler(std::unique_ptr<Controller> controller, Faults faults, const SimulatorOptions& options)
    : mController(std::move(controller)),
      mFaults(std::move(faults)),
      mSeed(options.seed),
      mUsualBaud(options.baud),
      mBaud(options.baud),
      mRestartTime(options.restartTime),
      mPowerUp(options.powerUp.value_or(static_cast<std::uint16_t>(std::random_device{}()))) {}

RequestHandler::Answer RequestHandler::AnswerText(const AsciiFrame& request, ClientState& client, const FaultPlan& plan,
                                                  kv::Instant now) {
  Attend(client, now);
  mCounter = mCounter == UINT16_MAX ? std::uint16_t{1} : static_cast<std::uint16_t>(mCounter + 1);
  const TextReply reply = Execute(request.text, client.connection, plan);
  if (!reply.changesNothing) mLast = {mCounter, kv::Crc32(request.text), reply.text.substr(0, kRememberedReply)};
  const auto unit = static_cast<std::uint8_t>(request.unit + (plan.isFromWrongUnit ? 1 : 0));
  return {EncodeReply(unit, request.text, reply.text, mCounter), reply.newBaud, reply.resets};
}

TextReply RequestHandler::Execute(std::string_view text, ConnectionAccess& connection, const FaultPlan& plan) {
  if (plan.refusal) return {RefusalText(text, *plan.refusal), true, std::nullopt, false};
  if (text.starts_with("SY")) return AnswerSync(text);
  mController->SetLying(plan.isLie);
  const kv::ScopeGuard honest([this] { mController->SetLying(false); });
  return mController->ExecuteText(text, connection);
}

TextReply RequestHandler::AnswerSync(std::string_view text) const {
  TextReply reply;
  if (text.size() != kSyncRequestSize || !IsHexText(text.substr(2, kSyncTagEnd - 2))) {
    reply.text = RefusalText(text, Refusal::Malformed);
  } else {
    reply.text = std::string(text.substr(0, kSyncTagEnd)) + kv::ToHex(mLast.counter, 4) + kv::ToHex(mLast.crc, 8) +
                 kv::ToHex(mPowerUp, 4) + mLast.reply;
  }
  return reply;
}

std::string RequestHandler::AnswerBlock(const BlockMessage& request, ClientState& client, const FaultPlan& plan,
                                        kv::Instant now) {
  Attend(client, now);
  const auto unit = static_cast<std::uint8_t>(request.unit + (plan.isFromWrongUnit ? 1 : 0));
  auto& last = client.lastBlock;
  if (!last || last->sequence != request.sequence || last->crc != request.crc) {
    BlockReply reply = Execute(request, client.connection, plan);
    // Busy is not an answer for good: the same request may be tried again.
    if (reply.status == kBlockBusy) return EncodeReply(request, unit, reply);
    last = {request.sequence, request.crc, std::move(reply)};
  }
  return EncodeReply(request, unit, last->reply);
}

BlockReply RequestHandler::Execute(const BlockMessage& request, ConnectionAccess& connection, const FaultPlan& plan) {
  if (plan.refusal == Refusal::Busy) return {kBlockBusy, {}};
  if (plan.refusal) return {kBlockRefused + static_cast<int>(*plan.refusal), {}};
  mController->SetLying(plan.isLie);
  const kv::ScopeGuard honest([this] { mController->SetLying(false); });
  return mController->ExecuteBlock(
      {request.opCode, request.param1, request.dataLength, request.param3, request.param4, request.payload},
      connection);
}

void RequestHandler::Advance(kv::Instant now) {
  // Lines are served one after another, so one of them may be a little behind the clock of another.
  mNow = std::max(mNow, now);
  mController->Advance(mNow);
}

void RequestHandler::Attend(ClientState& client, kv::Instant now) {
  Advance(now);
  if (std::exchange(client.resetsSeen, mResets) == mResets) return;
  client.connection.hasAccess = false;
  client.lastBlock.reset();
}

void RequestHandler::Restart(kv::Instant now) {
  Advance(now);
  mController->Restart();
  mCounter = 0;
  mLast = {};
  ++mPowerUp;
  BeginReset(now);
}

void RequestHandler::BeginReset(kv::Instant now) {
  ++mResets;
  mBaud = mUsualBaud;
  mResetUntil = now + mRestartTime;
}

}  // namespace sim
