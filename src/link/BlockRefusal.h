#pragma once

#include <optional>

#include "link/LinkError.h"

namespace kv {

// What the status code of a block message says; nothing for those of a message that was taken.
[[nodiscard]] std::optional<LinkError> RefusalOf(int status);

}  // namespace kv
