#include "simulator/Faults.h"

#include <algorithm>
#include <chrono>
#include <numeric>
#include <utility>

#include "base/Crc32.h"

namespace sim {
namespace {

kv::Duration Milliseconds(std::int64_t count) {
  return std::chrono::milliseconds(count);
}

void Add(FaultPlan& plan, const FaultRule& rule) {
  const auto size = [](std::int64_t count) { return static_cast<std::size_t>(count); };
  const Damage damage{size(rule.characters), rule.rate};
  switch (rule.kind) {
    case FaultKind::NoReply:
      plan.isUnanswered = true;
      break;
    case FaultKind::Late:
      plan.delay = Milliseconds(rule.milliseconds);
      break;
    case FaultKind::Double:
      plan.isDoubled = true;
      break;
    case FaultKind::Dribble:
      plan.gap = Milliseconds(rule.milliseconds);
      break;
    case FaultKind::Cut:
      plan.cutAfter = size(rule.after);
      break;
    case FaultKind::Damage:
      (rule.isRequest ? plan.requestDamage : plan.replyDamage) = damage;
      break;
    case FaultKind::WrongUnit:
      plan.isFromWrongUnit = true;
      break;
    case FaultKind::Echo:
      plan.isEchoed = true;
      break;
    case FaultKind::Garbage:
      plan.garbage = Garbage{size(rule.bytes), rule.bytesASecond};
      break;
    case FaultKind::Busy:
      plan.refusal = Refusal::Busy;
      break;
    case FaultKind::Refuse:
      plan.refusal = rule.refusal;
      break;
    case FaultKind::Lie:
      plan.isLie = true;
      break;
    case FaultKind::Reset:
      plan.resets = true;
      break;
    case FaultKind::Lost:
      plan.loss = Loss{size(rule.at), rule.isRequest, Milliseconds(rule.away)};
      break;
  }
}

void ChangeByte(std::string& bytes, std::size_t at, FaultRandom& random) {
  bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ (1 + random.Below(255)));
}

}  // namespace

std::expected<Faults, std::string> Faults::Create(const std::vector<std::string>& rules, std::uint64_t seed) {
  Faults faults(seed);
  for (const std::string& text : rules) {
    auto rule = ParseFaultRule(text);
    if (!rule) return std::unexpected(rule.error());
    faults.mStates.push_back({*std::move(rule), FaultRandom(seed + kv::Crc32(text))});
  }
  return faults;
}

FaultPlan Faults::PlanFor(std::string_view command) {
  FaultPlan plan;
  for (State& state : mStates) {
    if (Hits(state, command)) Add(plan, state.rule);
  }
  return plan;
}

bool Faults::Hits(State& state, std::string_view command) {
  const FaultRule& rule = state.rule;
  if (!rule.on.empty() && rule.on != command) return false;
  ++state.seen;
  if (rule.nth != 0 && state.seen != rule.nth) return false;
  if (state.seen % rule.every != 0) return false;
  if (rule.probability < 1 && !state.random.Happens(rule.probability)) return false;
  if (state.done == rule.most) return false;
  ++state.done;
  return true;
}

std::string Faults::Damaged(std::string_view bytes, const Damage& damage) {
  std::string damaged(bytes);
  if (damage.rate >= 0) {
    for (std::size_t at = 0; at < damaged.size(); ++at) {
      if (mMaterial.Happens(damage.rate)) ChangeByte(damaged, at, mMaterial);
    }
    return damaged;
  }
  // Different places: the same byte damaged twice could be whole again.
  std::vector<std::size_t> places(damaged.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  for (std::size_t i = 0; i < std::min(damage.characters, places.size()); ++i) {
    std::swap(places[i], places[i + mMaterial.Below(places.size() - i)]);
    ChangeByte(damaged, places[i], mMaterial);
  }
  return damaged;
}

std::string Faults::RandomBytes(std::size_t count) {
  std::string bytes(count, '\0');
  for (char& byte : bytes) byte = mMaterial.Byte();
  return bytes;
}

}  // namespace sim
