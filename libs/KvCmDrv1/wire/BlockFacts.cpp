#include "KvCmDrv1/wire/BlockFacts.h"

#include <algorithm>
#include <array>

#include "KvCmDrv1/wire/BlockCodec.h"
#include "link/BlockOperations.h"

namespace kv {
namespace {

using namespace BlockOperation;

// clang-format off
constexpr auto kRows = std::to_array<BlockFacts>({
    // operation          read   longest reply      name
    {kRunState,           true,  2,                 "run state"},
    {kPrepare,            true,  0,                 "prepare a transfer"},
    {kConfirmPassword,    false, 0,                 "confirm the project password"},
    {kStatus,             true,  106,               "status"},
    {kPrepareAgain,       true,  0,                 "prepare a transfer"},
    {kDownloadData,       false, 0,                 "download data"},
    {kBeginDownload,      false, 0,                 "begin a project download"},
    {kProgram,            false, 0,                 "program"},
    {kOperandList,        true,  kMaxReplyPayload,  "operand list"},
    {kMemory,             true,  kMaxReplyPayload,  "memory"},
    {kResourceDirectory,  true,  kMaxReplyPayload,  "resource directory"},
    {kResourcePiece,      true,  kMaxReplyPayload,  "resource piece"},
    {kDisplayMode,        false, 0,                 "display mode"},
    {kPanelDescription,   true,  kMaxReplyPayload,  "panel description"},
    {kPanelChanges,       true,  kMaxReplyPayload,  "panel changes"},
    {kPanelEvent,         false, kMaxReplyPayload,  "panel event",              false},
});
// clang-format on

constexpr BlockFacts kUnknown{.name = "unknown operation"};

}  // namespace

const BlockFacts& BlockFactsOf(std::uint16_t opCode) {
  const auto* row = std::ranges::find(kRows, opCode, &BlockFacts::opCode);
  return row == kRows.end() ? kUnknown : *row;
}

std::size_t LongestReplyOf(const BlockFields& fields) {
  const std::size_t longest = BlockFactsOf(fields.opCode).longestReply;
  const bool isAsLongAsAsked = fields.opCode == kMemory || fields.opCode == kResourcePiece;
  return isAsLongAsAsked ? std::min<std::size_t>(fields.dataLength, longest) : longest;
}

}  // namespace kv
