#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "link/ControllerErrorText.h"

// The panel's requests in the envelope that the controller's family understands.

namespace kv {
namespace {

std::string DoingText(std::string_view doing, std::uint8_t unit) {
  return std::string(doing) + " unit " + std::to_string(unit);
}

}  // namespace

std::optional<PanelTextReply> ChannelImpl::AskPanel(const PanelRequest& request) {
  const auto doing = [&] { return DoingText(request.doing, request.unit); };
  if (const auto done = mClient.EnsureHandshake(request.unit); !done) {
    Fail(done.error(), doing());
    return std::nullopt;
  }
  auto reply = mClient.Unit(request.unit).isAsciiOnly ? AskPanelInText(request) : AskPanelInBlock(request);
  if (!reply && request.isEvent) TellEventRefusal();
  return reply;
}

// The words of most refusals are about operands and files.
void ChannelImpl::TellEventRefusal() {
  if (mError.code != LinkErrorCode::Refused) return;
  const ControllerErrorMeaning meaning = PanelErrorText(mError.controllerCode);
  if (meaning.meaning == ControllerErrorText(mError.controllerCode).meaning) return;
  mError.happened = RefusedText(meaning, mError.controllerCode);
  mError.cure = meaning.cure;
}

std::optional<PanelTextReply> ChannelImpl::AskPanelInText(const PanelRequest& request) {
  constexpr std::size_t kEcho = 6;  // letters and tag
  const auto doing = [&] { return DoingText(request.doing, request.unit); };
  if (request.letters.empty()) {
    Fail(mClient.Explain(ExchangeOutcome::NotSupported), doing());
    return std::nullopt;
  }
  const std::uint16_t tag = mClient.NextTag();
  const std::size_t longest = kEcho + 2 * request.longestReply;
  const auto reply = Ask({.unit = request.unit,
                          .text = mWriter.Panel(request.letters, request.unit, tag, request.data),
                          .facts = request.isEvent ? TaggedWrite(longest) : TaggedRead(longest),
                          .notAfter = std::nullopt,
                          .onlyOn = request.onlyOn},
                         doing);
  if (!reply) return std::nullopt;
  std::optional<PanelTextReply> data = ReadPanelText(*reply, request.letters, tag);
  if (!data) {
    FailMalformed(doing());
    return std::nullopt;
  }
  Succeed();
  return data;
}

std::optional<PanelTextReply> ChannelImpl::AskPanelInBlock(const PanelRequest& request) {
  const auto doing = [&] { return DoingText(request.doing, request.unit); };
  const auto reply = mClient.SendBlock({.unit = request.unit,
                                        .fields = request.fields,
                                        .payload = request.data,
                                        .replyPayload = request.longestReply,
                                        .notAfter = request.notAfter,
                                        .onlyOn = request.onlyOn});
  if (!reply) {
    Fail(reply.error(), doing());
    return std::nullopt;
  }
  if (FailedStatus(reply->status, doing)) return std::nullopt;
  Succeed();
  return PanelTextReply{.data = std::string(reply->payload), .isCut = false};
}

void ChannelImpl::FailPanelReply(std::string_view doing, std::uint8_t unit) {
  FailMalformed(DoingText(doing, unit));
}

std::optional<PanelLinkCost> ChannelImpl::PanelCost(std::uint8_t unit) {
  if (const auto done = mClient.EnsureHandshake(unit); !done) {
    Fail(done.error(), DoingText("asking for the panel of", unit));
    return std::nullopt;
  }
  constexpr std::size_t kTextFrames =
      6 + 14 + 12 + 2 * 6;  // letters and tags, check, seal, start to end of both frames
  constexpr std::size_t kData = kPanelChangesRequest + kPanelChangesHead;
  if (mClient.Unit(unit).isAsciiOnly) {
    return PanelLinkCost{2 * mLine.WireTime(1), mLine.WireTime(kTextFrames + 2 * kData), kMostTextPiece};
  }
  return PanelLinkCost{mLine.WireTime(1), mLine.WireTime(2 * (kBlockHead + kBlockCheck) + kData), kMostBlockPiece};
}

}  // namespace kv
