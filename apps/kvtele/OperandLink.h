#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/OperandArguments.h"
#include "link/ChangeObserver.h"

// Operands of a connected controller, as many as one likes: a request carries up to MaxOperandsPerRequest.
namespace kv::cli {

// Reaches the controller and makes sure that it has these operands as it is now: it is no boot loader, its model has
// them, and its O/S is new enough. Where the options name the model, operands that it does not have are refused before
// anything is sent.
[[nodiscard]] OrFailure<std::unique_ptr<ConnectedController>> ConnectFor(Environment& environment,
                                                                         const CommonOptions& common,
                                                                         const Region& region);

// The same for any number of regions. They may depend on the model: `regionsFor` is asked with the model that the
// options name, if they do, and with that of the controller.
using RegionsFor = std::function<OrFailure<std::vector<Region>>(const std::string& model)>;
[[nodiscard]] OrFailure<std::unique_ptr<ConnectedController>> ConnectFor(Environment& environment,
                                                                         const CommonOptions& common,
                                                                         const RegionsFor& regionsFor);

// All raw value texts in address order, or none: half an answer would be taken for a whole one.
[[nodiscard]] OrFailure<std::vector<std::string>> ReadOperands(Environment& environment,
                                                               ConnectedController& controller, const Region& region);

// A write of the texts for the journal of changes, with the values as the controller has them; without those where
// nothing is recorded, or they cannot be read.
[[nodiscard]] ChangedOperands ChangeOf(ConnectedController& controller, const Region& region,
                                       std::vector<std::string> texts);

// Writes one text an operand. A failure says which operands were written before it and which may have been.
[[nodiscard]] OrFailure<void> WriteOperands(Environment& environment, ConnectedController& controller,
                                            const Region& region, std::span<const std::string> texts);

// Reads operands back that have just been written, in as many requests as that takes, and compares. The texts as they
// read now; the failure names the operands of the first request that are others.
[[nodiscard]] OrFailure<std::vector<std::string>> ReadOperandsBack(Environment& environment,
                                                                   ConnectedController& controller,
                                                                   const Region& region,
                                                                   std::span<const std::string> written);

// What there is to say when the request for `piece` failed; `before` says what had been written by then, and is empty
// when nothing had.
[[nodiscard]] Failure WriteFailure(const LinkError& error, const Region& piece, const std::string& before);

}  // namespace kv::cli
