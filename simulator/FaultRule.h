#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "simulator/Refusal.h"

namespace sim {

enum class FaultKind {
  NoReply,
  Late,
  Double,
  Dribble,
  Cut,
  Damage,
  WrongUnit,
  Echo,
  Garbage,
  Busy,
  Refuse,
  Lie,
  Reset,
  Lost
};

// What `on=` calls block messages; ASCII requests go by their first two letters.
constexpr std::string_view kBlockCommand = "block";

// One fault rule as it was read from its text. Grammar and meaning stand in simulator/Faults.h.
struct FaultRule {
  FaultKind kind = FaultKind::NoReply;

  // Which requests.
  std::string on;        // two letters or kBlockCommand; empty: every request
  std::int64_t nth = 0;  // 0: no matter which
  std::int64_t every = 1;
  double probability = 1;
  std::int64_t most = INT64_MAX;

  // What happens.
  std::int64_t milliseconds = 0;
  std::int64_t after = 0;             // bytes
  std::int64_t at = 0;                // bytes
  std::int64_t away = 0;              // milliseconds
  std::int64_t characters = 1;        // that are damaged, unless there is a rate
  double rate = -1;                   // share of the bytes that are damaged; negative: none given
  std::int64_t bytes = 0;             // of garbage; 0: endless
  std::int64_t bytesASecond = 11520;  // of garbage: as a line at 115200 baud carries
  Refusal refusal{};
  bool isRequest = false;  // it happens to the request, not to the reply
};

// Reads one rule. The error is a sentence that names the rule and what was expected.
[[nodiscard]] std::expected<FaultRule, std::string> ParseFaultRule(std::string_view text);

}  // namespace sim
