#include "KvCmDrv1/Exchange.h"

#include "KvCmDrv1/wire/BlockFacts.h"
#include "KvCmDrv1/wire/Replies.h"
#include "link/DownloadEngine.h"

namespace kv {

void Exchange::CarryText(std::string_view requestText, const CommandFacts& factsOfText, const UnitState& state,
                         Buffers& buffers) {
  text = requestText;
  facts = factsOfText;
  mState = &state;
  mBuffers = &buffers;
  mSeal.emplace(requestText);
}

void Exchange::CarryBlock(const BlockRequest& request, Buffers& buffers) {
  const BlockFacts& known = BlockFactsOf(request.fields.opCode);
  facts = {.kind = known.isRead ? RequestKind::Read : RequestKind::NonIdempotent,
           .isSettled = false,
           .isSlow = known.isSlow,
           .resets = false,
           .longestReply = kBlockHead + request.replyPayload + kBlockCheck};
  mBlock = {.unit = unit, .status = 0, .sequence = 0, .fields = request.fields, .payload = request.payload};
  mBuffers = &buffers;
}

void Exchange::NumberBlock(std::uint16_t sequence) {
  mBlock.sequence = sequence;
  EncodeBlockRequest(mBlock, mBuffers->frame);
}

bool Exchange::Accepts(const Received& received) {
  if (received.kind == Received::Kind::Frame) return IsText() && AcceptsFrame(received.frame);
  return !IsText() && received.kind == Received::Kind::Block && AcceptsBlock(received.block);
}

bool Exchange::AcceptsFrame(const AsciiFrame& frame) {
  if (frame.unit != unit) return false;
  const std::optional<SealedReply> sealed = mSeal->Open(frame);
  if (!sealed || !IsOurs(*sealed)) return false;
  Reply() = sealed->text;
  counter = sealed->counter;
  return true;
}

// A text with a tag was sent for this request only, and so was its refusal's seal; a settled text may have been sent
// before.
bool Exchange::IsOurs(const SealedReply& sealed) const {
  if (facts.isSettled) return IsNewer(sealed.counter, mState->counter);
  return EchoesTag(sealed.text, text) || ReadRefusal(sealed.text, text).has_value();
}

bool Exchange::AcceptsBlock(const BlockMessage& block) {
  if (block.unit != unit || block.sequence != mBlock.sequence || block.fields != mBlock.fields) return false;
  Reply() = block.payload;
  status = block.status;
  return true;
}

std::optional<int> Exchange::Refusal() const {
  if (IsText()) return ReadRefusal(Reply(), text);
  return status > kBlockRefused ? std::optional(status - kBlockRefused) : std::nullopt;
}

}  // namespace kv
