#pragma once

#include <expected>
#include <optional>

#include "base/AtomicFile.h"
#include "host/PanelDesigner.h"
#include "host/shared/SharedState.h"

namespace kv {

// The three files in which the current session keeps the panel designer's blocks.

// The blocks; nothing when one of the files is missing, an error when one cannot be read or has more than 64 MiB.
[[nodiscard]] std::expected<std::optional<PanelDesigner::Blocks>, FileError> ReadDesign(const SharedState& shared);

[[nodiscard]] std::expected<void, FileError> WriteDesign(const SharedState& shared,
                                                         const PanelDesigner::Blocks& blocks);

// Deletes the files when all three are there; errors are ignored.
void RemoveDesign(const SharedState& shared);

}  // namespace kv
