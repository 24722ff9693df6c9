#pragma once

#include "base/LibraryNotice.h"

namespace kv {

[[nodiscard]] LibraryNotice PortLibrary();

}  // namespace kv
