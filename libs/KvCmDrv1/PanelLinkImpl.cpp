#include "KvCmDrv1/PanelLinkImpl.h"

#include <algorithm>
#include <iterator>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "base/Crc32.h"
#include "link/BlockOperations.h"
#include "link/LinkLimits.h"

namespace kv {
namespace {

using namespace BlockOperation;

std::string_view NounOf(PanelResourceKind kind) {
  return kind == PanelResourceKind::Font ? "fonts" : "images";
}

std::string_view DoingOf(PanelAction action) {
  switch (action) {
    case PanelAction::Operate:
      return "asking to operate the panel of";
    case PanelAction::Leave:
      return "ending to operate the panel of";
    case PanelAction::Hold:
      return "holding on to what is pressed on the panel of";
    case PanelAction::Up:
      return "letting go on the panel of";
    case PanelAction::Down:
    case PanelAction::Tap:
      break;
  }
  return "pressing on the panel of";
}

constexpr std::string_view kReadingScreen = "reading the screen of";

}  // namespace

template <typename Value>
std::optional<Value> PanelLinkImpl::Checked(std::optional<Value> value, std::string_view doing, std::uint8_t unit) {
  if (!value) mChannel.FailPanelReply(doing, unit);
  return value;
}

std::optional<PanelDescription> PanelLinkImpl::Describe(std::uint8_t unit) {
  constexpr std::string_view kDoing = "asking for the panel of";
  const auto reply = mChannel.AskPanel({.letters = "PD",
                                        .fields = {.opCode = kPanelDescription},
                                        .data = {},
                                        .longestReply = kLongestDescription,
                                        .doing = kDoing,
                                        .unit = unit});
  if (!reply) return std::nullopt;
  return Checked(ReadPanelDescription(reply->data), kDoing, unit);
}

std::optional<PanelChanges> PanelLinkImpl::Changes(const PanelChangesRequest& request, std::uint8_t unit) {
  const std::optional<PanelLinkCost> cost = Cost(unit);
  if (!cost) return std::nullopt;
  PanelChangesRequest fitting = request;
  fitting.most = std::clamp(request.most, kLeastPanelPiece, cost->mostPiece);
  const auto reply = mChannel.AskPanel({.letters = "PC",
                                        .fields = {.opCode = kPanelChanges},
                                        .data = EncodeChangesRequest(fitting),
                                        .longestReply = fitting.most,
                                        .doing = kReadingScreen,
                                        .unit = unit});
  if (!reply) return std::nullopt;
  auto changes = ReadPanelChanges(reply->data);
  if (changes && changes->verdict != PanelVerdict::Done) changes.reset();
  return Checked(std::move(changes), kReadingScreen, unit);
}

std::optional<PanelChanges> PanelLinkImpl::Send(const PanelEvent& event, std::uint8_t unit) {
  const std::optional<PanelLinkCost> cost = Cost(unit);
  if (!cost) return std::nullopt;
  PanelEvent fitting = event;
  fitting.most = std::clamp(event.most, kLeastPanelPiece, cost->mostPiece);
  const auto reply = mChannel.AskPanel({.letters = "PE",
                                        .fields = {.opCode = kPanelEvent},
                                        .data = EncodeEvent(fitting),
                                        .longestReply = fitting.most,
                                        .doing = DoingOf(event.action),
                                        .unit = unit,
                                        .isEvent = true,
                                        .onlyOn = event.connection});
  if (!reply) return std::nullopt;
  auto changes = ReadPanelChanges(reply->data);
  if (changes && reply->isCut) {
    changes->isCut = true;
    changes->hasMore = true;
    changes->upTo = {event.seen.epoch, event.since};
  }
  return Checked(std::move(changes), DoingOf(event.action), unit);
}

// In as many requests as it takes: a directory is longer than a reply, and its count says when it is whole.
std::optional<PanelDirectory> PanelLinkImpl::Directory(PanelResourceKind kind, std::uint8_t unit) {
  const std::string doing = "reading the directory of " + std::string(NounOf(kind)) + " of";
  PanelDirectory directory;
  std::string bytes;
  while (true) {
    const auto first = static_cast<std::uint32_t>(directory.entries.size());
    const auto reply = mChannel.AskPanel({.letters = {},
                                          .fields = {.opCode = kResourceDirectory,
                                                     .param1 = first,
                                                     .dataLength = 0,
                                                     .param3 = static_cast<std::uint16_t>(kind),
                                                     .param4 = 0},
                                          .data = {},
                                          .longestReply = kMostBlockPiece,
                                          .doing = doing,
                                          .unit = unit});
    if (!reply) return std::nullopt;
    std::optional<PanelDirectoryPart> part = ReadPanelDirectory(reply->data);
    const bool isStuck = part && part->entries.empty() && first < part->countOfAll;
    if (!part || isStuck || first + part->entries.size() > part->countOfAll) {
      mChannel.FailPanelReply(doing, unit);
      return std::nullopt;
    }
    std::ranges::move(part->entries, std::back_inserter(directory.entries));
    bytes += part->bytes;
    if (directory.entries.size() == part->countOfAll) break;
  }
  directory.check = Crc32(bytes);
  return directory;
}

std::optional<Bytes> PanelLinkImpl::ReadPiece(PanelResourceKind kind, std::uint16_t id, std::uint32_t offset,
                                              std::uint32_t length, std::uint8_t unit) {
  const std::string doing = "reading one of the " + std::string(NounOf(kind)) + " of";
  const auto reply = mChannel.AskPanel({.letters = {},
                                        .fields = {.opCode = kResourcePiece,
                                                   .param1 = offset,
                                                   .dataLength = length,
                                                   .param3 = static_cast<std::uint16_t>(kind),
                                                   .param4 = id},
                                        .data = {},
                                        .longestReply = length,
                                        .doing = doing,
                                        .unit = unit});
  if (!reply) return std::nullopt;
  if (reply->data.size() != length || length < 1 || length > kMostMemoryPerRead) {
    mChannel.FailPanelReply(doing, unit);
    return std::nullopt;
  }
  return Bytes(reply->data.begin(), reply->data.end());
}

std::optional<PanelLinkCost> PanelLinkImpl::Cost(std::uint8_t unit) {
  return mChannel.PanelCost(unit);
}

unsigned PanelLinkImpl::Connection() const {
  return mChannel.ConnectionNumber();
}

const LinkError& PanelLinkImpl::LastError() const {
  return mChannel.LastError();
}

}  // namespace kv
