#pragma once

#include <string>

#include "KvTele2/HostState.h"

namespace kv {

// What is told at a glance, by shape and word as well as by colour: not everybody sees colours, and no screen reader
// does.
enum class SignShape { Ring, Triangle, Square, Arrow, Diamond, Disc, Half, Cross };
enum class SignColour { Grey, Green, Amber, Blue, Red };

struct Sign {
  SignShape shape = SignShape::Ring;
  SignColour colour = SignColour::Grey;
  std::string word = "-";

  bool operator==(const Sign&) const = default;
};

// Whether the machine's program runs, as far as it is known: of the controller that is on line, was lost or was
// refused.
[[nodiscard]] Sign MachineSign(const HostState& state);
// Whether the controller answers.
[[nodiscard]] Sign LinkSign(const HostState& state);

}  // namespace kv
