#pragma once

#include <cstdint>

#include "simulator/Controller.h"
#include "simulator/Machine.h"

namespace sim {

// Executes one block message. The refusals are checked in the order: not known, not on this model, no access, wrong
// state, then what the operation itself finds.
[[nodiscard]] BlockReply ExecuteBlock(Machine& machine, const BlockRequest& request, const Connection& connection);

// Whether the operation may change what a state file keeps.
[[nodiscard]] bool MayChangeState(std::uint16_t opCode);

}  // namespace sim
