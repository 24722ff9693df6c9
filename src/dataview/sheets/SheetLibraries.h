#pragma once

#include <array>

#include "base/LibraryNotice.h"

namespace kv {

[[nodiscard]] std::array<LibraryNotice, 3> SheetLibraries();

}  // namespace kv
