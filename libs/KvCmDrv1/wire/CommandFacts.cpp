#include "KvCmDrv1/wire/CommandFacts.h"

#include <array>

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
    // prefix  kind     slow   resets longest reply
    {"ID",     Read,    false, false, 200},
    {"DRS",    Read,    false, false, 2 + 512 + kSeal},
    {"GI",     Read,    false, false, kMaxFrameText},
    {"CCE",    Once,    true,  true,  kShort},
    {"CCB",    Once,    true,  true,  kShort},
    {"CCR",    Once,    true,  false, kShort},
    {"CC",     Once,    true,  false, kShort},
    {"PV",     Once,    true,  false, kShort},
    {"WD",     Placing, false, false, kShort},
    {"ED",     Once,    true,  true,  kShort},
    {"DE",     Once,    true,  false, kShort},
    {"DI",     Once,    true,  false, kShort},
    {"LN",     Placing, false, false, kShort},
    {"LD",     Placing, false, false, kShort},
    {"FS",     Once,    true,  false, kShort},
    {"FI",     Read,    false, false, kShort},
    {"OSS",    Read,    true,  false, kShort},
    {"OSP",    Placing, true,  false, kShort},
    {"OS",     Once,    true,  false, kShort},
    {"FW",     Placing, false, false, kShort},
    {"RX",     Read,    false, false, 10 + 128 + kSeal},
    {"CPSR",   Once,    false, false, kShort},
    {"CB",     Once,    false, false, kShort},
});
// clang-format on

}  // namespace

CommandFacts FactsOf(std::string_view text) {
  for (const Row& row : kRows) {
    if (text.starts_with(row.prefix)) return {row.kind, true, row.isSlow, row.resets, row.longestReply};
  }
  return {.longestReply = kShort};
}

CommandFacts TaggedRead(std::size_t longestReply) {
  return {Read, false, false, false, longestReply + kSeal};
}

CommandFacts TaggedWrite(std::size_t longestReply) {
  return {Once, false, false, false, longestReply + kSeal};
}

}  // namespace kv
