#include "KvCmDrv1/PanelLinkImpl.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

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

// Makes the request, and of its reply what `read` finds in it; nothing there means that it is not what it has to be.
template <typename Read>
auto Ask(ChannelImpl& channel, const ChannelImpl::PanelRequest& request, const Read& read)
    -> std::invoke_result_t<Read, const PanelTextReply&> {
  const auto reply = channel.AskPanel(request);
  if (!reply) return std::nullopt;
  auto value = read(*reply);
  if (!value) channel.FailPanelReply(request.doing, request.unit);
  return value;
}

}  // namespace

std::optional<PanelDescription> PanelLinkImpl::Describe(std::uint8_t unit) {
  return Ask(mChannel,
             {.letters = "PD",
              .fields = {.opCode = kPanelDescription},
              .data = {},
              .longestReply = kLongestDescription,
              .doing = "asking for the panel of",
              .unit = unit},
             [](const PanelTextReply& reply) { return ReadPanelDescription(reply.data); });
}

std::optional<PanelChanges> PanelLinkImpl::Changes(const PanelChangesRequest& request, std::uint8_t unit) {
  const std::optional<PanelLinkCost> cost = Cost(unit);
  if (!cost) return std::nullopt;
  PanelChangesRequest fitting = request;
  fitting.most = std::clamp(request.most, kLeastPanelPiece, cost->mostPiece);
  const std::uint64_t traced = mChannel.Traced();
  auto told = Ask(mChannel,
                  {.letters = "PC",
                   .fields = {.opCode = kPanelChanges},
                   .data = EncodeChangesRequest(fitting),
                   .longestReply = fitting.most,
                   .doing = "reading the screen of",
                   .unit = unit},
                  [](const PanelTextReply& reply) {
                    auto changes = ReadPanelChanges(reply.data);
                    if (changes && changes->verdict != PanelVerdict::Done) changes.reset();
                    return changes;
                  });
  if (told) mChannel.SetPollAside(traced);
  return told;
}

std::optional<PanelChanges> PanelLinkImpl::Send(const PanelEvent& event, std::uint8_t unit) {
  const std::optional<PanelLinkCost> cost = Cost(unit);
  if (!cost) return std::nullopt;
  PanelEvent fitting = event;
  fitting.most = std::clamp(event.most, kLeastPanelPiece, cost->mostPiece);
  return Ask(mChannel,
             {.letters = "PE",
              .fields = {.opCode = kPanelEvent},
              .data = EncodeEvent(fitting),
              .longestReply = fitting.most,
              .doing = DoingOf(event.action),
              .unit = unit,
              .isEvent = true,
              .onlyOn = event.connection},
             [&event](const PanelTextReply& reply) {
               auto changes = ReadPanelChanges(reply.data);
               if (changes && reply.isCut) {
                 changes->isCut = true;
                 changes->hasMore = true;
                 changes->upTo = {event.seen.epoch, event.since};
               }
               return changes;
             });
}

// In as many requests as it takes: a directory is longer than a reply, and its count says when it is whole.
std::optional<PanelDirectory> PanelLinkImpl::Directory(PanelResourceKind kind, std::uint8_t unit) {
  const std::string doing = "reading the directory of " + std::string(NounOf(kind)) + " of";
  PanelDirectory directory;
  std::string bytes;
  for (bool isWhole = false; !isWhole;) {
    const std::size_t first = directory.entries.size();
    const auto add = [&](const PanelTextReply& reply) -> std::optional<bool> {
      std::optional<PanelDirectoryPart> part = ReadPanelDirectory(reply.data);
      const bool isStuck = part && part->entries.empty() && first < part->countOfAll;
      if (!part || isStuck || first + part->entries.size() > part->countOfAll) return std::nullopt;
      std::ranges::move(part->entries, std::back_inserter(directory.entries));
      bytes += part->bytes;
      return directory.entries.size() == part->countOfAll;
    };
    const auto added = Ask(mChannel,
                           {.letters = {},
                            .fields = {.opCode = kResourceDirectory,
                                       .param1 = static_cast<std::uint32_t>(first),
                                       .dataLength = 0,
                                       .param3 = static_cast<std::uint16_t>(kind),
                                       .param4 = 0},
                            .data = {},
                            .longestReply = kMostBlockPiece,
                            .doing = doing,
                            .unit = unit},
                           add);
    if (!added) return std::nullopt;
    isWhole = *added;
  }
  directory.check = Crc32(bytes);
  return directory;
}

std::optional<Bytes> PanelLinkImpl::ReadPiece(PanelResourceKind kind, std::uint16_t id, std::uint32_t offset,
                                              std::uint32_t length, std::uint8_t unit) {
  const Instant notAfter = mChannel.EndOfPieces(length, unit);
  Bytes bytes;
  do {
    const auto done = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t count = std::min(mChannel.BlockPiece(), length - done);
    const auto piece = AskPiece({kind, id, offset + done, count}, unit, notAfter);
    if (!mChannel.NoteBlockPiece(piece.has_value(), count, notAfter)) return std::nullopt;
    if (piece) bytes.insert(bytes.end(), piece->begin(), piece->end());
  } while (bytes.size() < length);
  return bytes;
}

std::optional<std::string> PanelLinkImpl::AskPiece(const Piece& piece, std::uint8_t unit, Instant notAfter) {
  const std::string doing = "reading one of the " + std::string(NounOf(piece.kind)) + " of";
  return Ask(mChannel,
             {.letters = {},
              .fields = {.opCode = kResourcePiece,
                         .param1 = piece.offset,
                         .dataLength = piece.length,
                         .param3 = static_cast<std::uint16_t>(piece.kind),
                         .param4 = piece.id},
              .data = {},
              .longestReply = piece.length,
              .doing = doing,
              .unit = unit,
              .notAfter = notAfter},
             [length = piece.length](const PanelTextReply& reply) -> std::optional<std::string> {
               if (reply.data.size() != length || length < 1 || length > kMostMemoryPerRead) return std::nullopt;
               return reply.data;
             });
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
