#include "simulator/FaultRule.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <variant>

#include "base/Hex.h"
#include "base/Numbers.h"

namespace sim {
namespace {

using Failure = std::unexpected<std::string>;
using enum FaultKind;

constexpr std::int64_t kMostCount = 1'000'000'000;
constexpr std::int64_t kMostMilliseconds = 3'600'000;
constexpr std::uint32_t kMostCode = 0x7F;  // a block message's status is 128 + code

struct KindRow {
  std::string_view name;
  FaultKind kind;
};

// clang-format off
constexpr std::array kKinds = {
    KindRow{"noreply",   NoReply},
    KindRow{"late",      Late},
    KindRow{"double",    Double},
    KindRow{"dribble",   Dribble},
    KindRow{"cut",       Cut},
    KindRow{"damage",    Damage},
    KindRow{"wrongunit", WrongUnit},
    KindRow{"echo",      Echo},
    KindRow{"garbage",   Garbage},
    KindRow{"busy",      Busy},
    KindRow{"refuse",    Refuse},
    KindRow{"lie",       Lie},
    KindRow{"reset",     Reset},
    KindRow{"lost",      Lost},
};
// clang-format on

struct Whole {
  std::int64_t FaultRule::* field;
  std::int64_t least;
  std::int64_t greatest;
};
struct Share {
  double FaultRule::* field;  // 0 to 1
};
struct Code {};       // two hexadecimal digits
struct Command {};    // two letters or "block"
struct Direction {};  // "in" or "out"

struct KeyRow {
  std::string_view name;
  unsigned kinds;   // that take it, as bits
  bool isRequired;  // by the kinds that take it
  std::variant<Whole, Share, Code, Command, Direction> value;
  std::string_view expected;
};

template <typename... Kinds>
constexpr unsigned Of(Kinds... kinds) {
  return ((1U << static_cast<unsigned>(kinds)) | ...);
}
constexpr unsigned kEvery = ~0U;

// clang-format off
constexpr std::array kKeys = {
    KeyRow{"on",    kEvery,            false, Command{},                                           "two letters of a command, or block"},
    KeyRow{"nth",   kEvery,            false, Whole{&FaultRule::nth, 1, kMostCount},               "a number from 1 on"},
    KeyRow{"every", kEvery,            false, Whole{&FaultRule::every, 1, kMostCount},             "a number from 1 on"},
    KeyRow{"p",     kEvery,            false, Share{&FaultRule::probability},                      "a probability from 0 to 1"},
    KeyRow{"max",   kEvery,            false, Whole{&FaultRule::most, 1, kMostCount},              "a number from 1 on"},
    KeyRow{"ms",    Of(Late, Dribble), true,  Whole{&FaultRule::milliseconds, 1, kMostMilliseconds}, "milliseconds from 1 to 3600000"},
    KeyRow{"after", Of(Cut),           true,  Whole{&FaultRule::after, 0, kMostCount},             "a number of bytes"},
    KeyRow{"chars", Of(Damage),        false, Whole{&FaultRule::characters, 1, kMostCount},        "a number of characters from 1 on"},
    KeyRow{"rate",  Of(Damage),        false, Share{&FaultRule::rate},                             "the share of damaged bytes from 0 to 1"},
    KeyRow{"dir",   Of(Damage, Lost),  false, Direction{},                                         "in or out"},
    KeyRow{"bytes", Of(Garbage),       false, Whole{&FaultRule::bytes, 1, 1'000'000},              "a number of bytes from 1 to 1000000"},
    KeyRow{"rate",  Of(Garbage),       false, Whole{&FaultRule::bytesASecond, 1, 1'000'000},       "bytes a second from 1 to 1000000"},
    KeyRow{"code",  Of(Refuse),        true,  Code{},                                              "two hexadecimal digits from 01 to 7F"},
    KeyRow{"at",    Of(Lost),          false, Whole{&FaultRule::at, 0, kMostCount},                "a number of bytes"},
    KeyRow{"away",  Of(Lost),          false, Whole{&FaultRule::away, 0, kMostMilliseconds},       "milliseconds from 0 to 3600000"},
};
// clang-format on

bool Takes(const KeyRow& row, FaultKind kind) {
  return (row.kinds & Of(kind)) != 0;
}

template <typename Rows, typename Chosen>
std::string Names(const Rows& rows, Chosen chosen) {
  std::string names;
  for (const auto& row : rows) {
    if (chosen(row)) names.append(names.empty() ? "" : ", ").append(row.name);
  }
  return names;
}

bool Set(FaultRule& rule, const Whole& whole, std::string_view text) {
  const auto number = kv::ParseInteger(text);
  if (!number || *number < whole.least || *number > whole.greatest) return false;
  rule.*whole.field = *number;
  return true;
}

bool Set(FaultRule& rule, const Share& share, std::string_view text) {
  double number = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !(number >= 0 && number <= 1)) return false;
  rule.*share.field = number;
  return true;
}

bool Set(FaultRule& rule, Code, std::string_view text) {
  const auto code = text.size() == 2 ? kv::ParseHex(text) : std::nullopt;
  if (!code || *code == 0 || *code > kMostCode) return false;
  rule.refusal = static_cast<Refusal>(*code);
  return true;
}

bool Set(FaultRule& rule, Command, std::string_view text) {
  rule.on = text;
  return text.size() == 2 || text == kBlockCommand;
}

bool Set(FaultRule& rule, Direction, std::string_view text) {
  rule.isRequest = text == "in";
  return rule.isRequest || text == "out";
}

std::expected<std::string_view, std::string> ReadPair(FaultRule& rule, std::string_view pair) {
  const std::size_t equals = std::min(pair.find('='), pair.size());
  const std::string_view name = pair.substr(0, equals);
  const auto takesName = [&](const KeyRow& candidate) { return candidate.name == name && Takes(candidate, rule.kind); };
  const auto row = std::ranges::find_if(kKeys, takesName);
  if (row == kKeys.end()) {
    const std::string names = Names(kKeys, [&](const KeyRow& candidate) { return Takes(candidate, rule.kind); });
    return Failure("\"" + std::string(name) + "\" is no key of it; expected one of " + names);
  }
  const std::string_view value = pair.substr(std::min(equals + 1, pair.size()));
  if (!std::visit([&](const auto& kindOfValue) { return Set(rule, kindOfValue, value); }, row->value)) {
    return Failure(std::string(name) + "=" + std::string(value) + ": expected " + std::string(row->expected));
  }
  return name;
}

std::expected<FaultRule, std::string> ReadRule(std::string_view text) {
  const std::size_t colon = std::min(text.find(':'), text.size());
  const auto kind = std::ranges::find(kKinds, text.substr(0, colon), &KindRow::name);
  if (kind == kKinds.end()) {
    const std::string names = Names(kKinds, [](const KindRow&) { return true; });
    return Failure("\"" + std::string(text.substr(0, colon)) + "\" is no kind of fault; expected one of " + names);
  }
  FaultRule rule;
  rule.kind = kind->kind;
  std::string given = ",";
  for (std::size_t at = colon; at < text.size();) {
    const std::size_t comma = std::min(text.find(',', at + 1), text.size());
    const auto name = ReadPair(rule, text.substr(at + 1, comma - at - 1));
    if (!name) return Failure(name.error());
    given.append(*name).append(",");
    at = comma;
  }
  for (const KeyRow& row : kKeys) {
    if (!row.isRequired || !Takes(row, rule.kind)) continue;
    if (given.find("," + std::string(row.name) + ",") != std::string::npos) continue;
    return Failure(std::string(row.name) + "= is missing; expected " + std::string(row.expected));
  }
  return rule;
}

}  // namespace

std::expected<FaultRule, std::string> ParseFaultRule(std::string_view text) {
  auto rule = ReadRule(text);
  if (!rule) return Failure("Fault rule \"" + std::string(text) + "\": " + rule.error() + ".");
  return rule;
}

}  // namespace sim
