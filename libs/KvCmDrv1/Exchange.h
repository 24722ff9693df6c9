#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KvCmDrv1/Line.h"
#include "KvCmDrv1/UnitState.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/CommandFacts.h"
#include "KvCmDrv1/wire/Seal.h"
#include "link/BlockOperations.h"

namespace kv {

struct TextRequest {
  std::uint8_t unit = 1;
  std::string_view text;  // complete, with tag and check where the command has them
  CommandFacts facts;
  std::optional<Instant> notAfter;   // an earlier deadline than the request's own
  std::optional<unsigned> onlyOn{};  // number of the only connection that it may go out on
};

struct BlockRequest {
  std::uint8_t unit = 1;
  BlockFields fields;
  std::string_view payload;
  std::size_t replyPayload = 0;  // bytes expected
  std::optional<Instant> notAfter;
  std::optional<unsigned> onlyOn{};
};

// One request under way, text or block message: what goes out, until when it may take, what it has used up, and which
// of the messages that arrive is its answer.
class Exchange final : public ReplyMatcher {
 public:
  enum class Role {
    Request,    // what a caller has asked for
    Handshake,  // asked on behalf of a request and within its deadline: who is there, its counter, access
    Admission,  // a handshake with a partner that has called and is not taken yet
  };
  // The bytes of a request and of its answer. They outlive the exchange and are used again, so that a request costs no
  // allocation.
  struct Buffers {
    std::string frame;
    std::string reply;
  };

  // Sends nothing of its own: a handshake, or access, is all that is wanted.
  Exchange(std::uint8_t unitId, Instant from, Instant until, Role itsRole = Role::Request)
      : unit(unitId), role(itsRole), start(from), deadline(until) {}

  // Both take the answer into `buffers`; the text and the payload must outlive the exchange. The frame of a text is
  // encoded already, that of a block message with each NumberBlock.
  void CarryText(std::string_view requestText, const CommandFacts& factsOfText, const UnitState& state,
                 Buffers& buffers);
  void CarryBlock(const BlockRequest& request, Buffers& buffers);
  void NumberBlock(std::uint16_t sequence);

  bool Accepts(const Received& received) override;

  [[nodiscard]] bool IsText() const { return !text.empty(); }
  [[nodiscard]] bool IsPanelEvent() const {
    return IsText() ? text.starts_with("PE") : mBlock.fields.opCode == BlockOperation::kPanelEvent;
  }
  [[nodiscard]] bool IsRead() const { return facts.kind == RequestKind::Read; }
  // It has gone out and may have changed something, and no answer is here.
  [[nodiscard]] bool IsInDoubt() const { return wentOut && !IsRead(); }
  // The counter of the seals tells old answers from its own, or what became of it.
  [[nodiscard]] bool UsesCounter() const { return IsText() && (facts.isSettled || !IsRead()); }
  // SY has to tell whether it was executed before it is sent again. A block message has its sequence number for that.
  [[nodiscard]] bool MustAskBeforeRepeat() const { return IsText() && facts.kind == RequestKind::NonIdempotent; }
  // The code with which the controller refused; nothing: it did not.
  [[nodiscard]] std::optional<int> Refusal() const;
  [[nodiscard]] std::string_view Frame() const { return mBuffers->frame; }
  [[nodiscard]] std::string& Reply() const { return mBuffers->reply; }
  [[nodiscard]] std::size_t AnswerBytes() const { return IsText() ? Reply().size() : facts.longestReply; }

  // What is asked for.
  const std::uint8_t unit;
  const Role role;
  CommandFacts facts;
  std::string_view text;             // of a text request
  std::optional<unsigned> onlyOn{};  // over another connection it has lost its meaning
  // How long it may take.
  Instant start;
  Instant deadline;
  // What it has used up.
  int tries = 0;   // on the connection that it went out on last
  int losses = 0;  // of the connection
  Instant tryStart{};
  bool wentOut = false;  // some of it has reached the line since it was refused last
  // What was known before it went out, and what its answer told.
  std::uint16_t counterBefore = 0;
  std::uint16_t powerUpBefore = 0;
  std::uint16_t counter = 0;
  int status = 0;  // of a block message

 private:
  [[nodiscard]] bool AcceptsFrame(const AsciiFrame& frame);
  [[nodiscard]] bool AcceptsBlock(const BlockMessage& block);
  [[nodiscard]] bool IsOurs(const SealedReply& sealed) const;

  Buffers* mBuffers = nullptr;
  const UnitState* mState = nullptr;
  std::optional<Seal> mSeal;
  BlockMessage mBlock;
};

}  // namespace kv
