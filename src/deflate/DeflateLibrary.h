#pragma once

#include "base/LibraryNotice.h"

namespace kv {

[[nodiscard]] LibraryNotice DeflateLibrary();

}  // namespace kv
