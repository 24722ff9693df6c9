#pragma once

#include <cstdint>
#include <span>

#include "simulator/Controller.h"
#include "simulator/Machine.h"

namespace sim {

using BlockAnswer = Result<BlockReply>;

// What the controller knows of each block operation before it looks at the fields.
struct BlockOperation {
  enum class Models : std::uint8_t { All, WithDisplay, WithColour };

  std::uint16_t opCode;
  bool needsAccess;
  bool needsFlash;  // refused as busy while the flash is at work
  Models models;
  bool worksInBoot;
  bool takesPayload;
  BlockAnswer (*execute)(Machine&, const BlockRequest&);

  [[nodiscard]] bool IsAtHome(const Model& model) const;
};

[[nodiscard]] std::span<const BlockOperation> AllBlockOperations();

// Executes one block message. Refusals come in the order: not known, not on this model, no access, wrong state, busy,
// malformed (a payload that the operation does not take), then what the operation itself finds.
[[nodiscard]] BlockReply ExecuteBlock(Machine& machine, const BlockRequest& request,
                                      const ConnectionAccess& connection);

// Whether the operation may change what a state file keeps.
[[nodiscard]] bool MayChangeState(std::uint16_t opCode);

}  // namespace sim
