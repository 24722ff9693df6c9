#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Time.h"
#include "simulator/FaultRandom.h"
#include "simulator/FaultRule.h"
#include "simulator/Refusal.h"

namespace sim {

// Faults on demand. A rule is `KIND[:key=value[,key=value...]]`. Without selectors it applies to every request for this
// controller that arrives in good order.
//
//   KIND       Keys               What goes wrong
//   noreply                       the request is executed, the reply is not sent
//   late       ms=                the reply begins so many milliseconds late; later replies wait behind it
//   double                        the reply is sent twice
//   dribble    ms=                so many milliseconds pass between two bytes of the reply
//   cut        after=             only so many bytes of the reply are sent
//   damage     chars=1 dir=out    so many bytes of the reply (dir=in: of the request) become other bytes; "/" and CR
//                                 may be among them
//              rate=              instead of chars: the share of bytes, 0 to 1, that become other bytes
//   wrongunit                     the reply is that of another unit id, with good checks
//   echo                          the request comes back before the reply
//   garbage    rate=11520         random bytes, so many a second and without end, instead of the reply
//              bytes=             instead of endless: so many random bytes, then the reply
//   busy                          refused as busy and not executed
//   refuse     code=              refused with this code (two hexadecimal digits) and not executed
//   lie                           answered as done, but nothing is changed: memory, state, project, O/S, line speed
//   reset                         the power fails and comes back instead: not executed, no reply, work of the flash cut
//                                 short, counter and access of every connection gone
//   lost       at=0 dir=out       the connection is cut when so many bytes of the reply have been sent
//              away=0             no connection is taken for so many milliseconds after that
//              dir=in             the connection is cut while the request is on its way: it is not executed
//
//   Selector   Which requests (all that are given must hold, in this order)
//   on=        those that begin with these two letters; "block": block messages
//   nth=       only the n-th of them, from 1 on
//   every=     only every n-th of them
//   p=         each with this probability, 0 to 1
//   max=       at most so many of them
//
// Examples: "noreply:on=WO,nth=2", "damage:rate=0.001", "late:ms=700,every=5", "lost:at=12,nth=40,away=2000".
// Several rules may hit one request. The same seed, rules and requests give the same faults on every platform.

// How a message is damaged.
struct Damage {
  std::size_t characters = 1;
  double rate = -1;  // share of the bytes, 0 to 1; not negative: instead of characters
};

struct Garbage {
  std::size_t bytes = 0;  // 0: endless
  std::int64_t bytesASecond = 0;
};

struct Loss {
  std::size_t at = 0;  // bytes of the reply that still pass
  bool isBeforeRequest = false;
  kv::Duration away{};
};

// Everything that shall go wrong with one request and its reply.
struct FaultPlan {
  bool isUnanswered = false;
  bool isDoubled = false;
  bool isFromWrongUnit = false;
  bool isEchoed = false;
  bool isLie = false;
  bool resets = false;
  kv::Duration delay{};
  kv::Duration gap{};
  std::optional<std::size_t> cutAfter;
  std::optional<Refusal> refusal;
  std::optional<Damage> requestDamage;
  std::optional<Damage> replyDamage;
  std::optional<Garbage> garbage;
  std::optional<Loss> loss;
};

// The rules of one controller, with their counts: they run on over all its connections.
class Faults {
 public:
  [[nodiscard]] static std::expected<Faults, std::string> Create(const std::vector<std::string>& rules,
                                                                 std::uint64_t seed);

  // What goes wrong with the request that has just arrived; `command` is its first two letters or kBlockCommand.
  [[nodiscard]] FaultPlan PlanFor(std::string_view command);

  [[nodiscard]] std::string Damaged(std::string_view bytes, const Damage& damage);
  [[nodiscard]] std::string RandomBytes(std::size_t count);
  [[nodiscard]] std::uint64_t RandomSeed() { return mMaterial.Next(); }

 private:
  struct State {
    FaultRule rule;
    FaultRandom random;  // its own, so that leaving out one rule does not change what the others do
    std::int64_t seen = 0;
    std::int64_t done = 0;
  };

  explicit Faults(std::uint64_t seed) : mMaterial(seed) {}
  [[nodiscard]] static bool Hits(State& state, std::string_view command);

  std::vector<State> mStates;
  FaultRandom mMaterial;  // of damage and garbage
};

}  // namespace sim
