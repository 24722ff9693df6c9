#include "KvCmDrv1/wire/CommandFacts.h"

#include <algorithm>
#include <array>

#include "KvCmDrv1/wire/PanelCodec.h"
#include "base/Hex.h"
#include "link/AsciiFrame.h"

namespace kv {
namespace {

struct Row {
  std::string_view prefix;
  RequestKind kind;
  bool isSlow;
  bool resets;
  std::size_t longestReply;
};

using enum RequestKind;
constexpr std::size_t kSeal = 12;
constexpr std::size_t kShort = 9 + kSeal;  // "CCOK", "OSERROR04"

// clang-format off
// The first row whose prefix fits is the one.
constexpr auto kRows = std::to_array<Row>({
    // prefix  kind           slow   resets longest reply
    {"ID",     Read,          false, false, 200},
    {"DRS",    Read,          false, false, 2 + 512 + kSeal},
    {"GI",     Read,          false, false, kMaxFrameText},
    {"CCE",    NonIdempotent, true,  true,  kShort},
    {"CCB",    NonIdempotent, true,  true,  kShort},
    {"CCR",    NonIdempotent, true,  false, kShort},
    {"CC",     NonIdempotent, true,  false, kShort},
    {"PV",     NonIdempotent, true,  false, kShort},
    {"WD",     Idempotent,    false, false, kShort},
    {"ED",     NonIdempotent, true,  true,  kShort},
    {"DE",     NonIdempotent, true,  false, kShort},
    {"DI",     NonIdempotent, true,  false, kShort},
    {"LN",     Idempotent,    false, false, kShort},
    {"LD",     Idempotent,    false, false, kShort},
    {"FS",     NonIdempotent, true,  false, kShort},
    {"FI",     Read,          false, false, kShort},
    {"OSS",    Read,          true,  false, kShort},
    {"OSP",    Idempotent,    true,  false, kShort},
    {"OS",     NonIdempotent, true,  false, kShort},
    {"FW",     Idempotent,    false, false, kShort},
    {"RX",     Read,          false, false, 10 + 128 + kSeal},
    {"CPSR",   NonIdempotent, false, false, kShort},
    {"CB",     NonIdempotent, false, false, kShort},
});
// clang-format on

// Reads with a tag, and settled commands that are counted as requests of their own but change nothing.
constexpr auto kHarmless = std::to_array<std::string_view>({"RO", "RM", "IN", "AC", "SY", "PV", "DI", "PD", "PC"});

}  // namespace

bool ChangesSomething(std::string_view text) {
  if (std::ranges::any_of(kHarmless, [text](std::string_view prefix) { return text.starts_with(prefix); }))
    return false;
  constexpr std::size_t kEventData = 6;  // letters and tag are before it
  if (text.starts_with("PE") && text.size() > kEventData + 1) {
    const std::optional<std::uint8_t> action = HexPairToByte(text.substr(kEventData, 2));
    return !action || PanelEventChangesSomething(std::string(1, static_cast<char>(*action)));
  }
  return CommandFactsOf(text).kind != Read;
}

CommandFacts CommandFactsOf(std::string_view text) {
  for (const Row& row : kRows) {
    if (text.starts_with(row.prefix)) return {row.kind, true, row.isSlow, row.resets, row.longestReply};
  }
  return {.longestReply = kShort};
}

CommandFacts TaggedRead(std::size_t longestReply) {
  return {Read, false, false, false, longestReply + kSeal};
}

CommandFacts TaggedWrite(std::size_t longestReply) {
  return {NonIdempotent, false, false, false, longestReply + kSeal};
}

}  // namespace kv
