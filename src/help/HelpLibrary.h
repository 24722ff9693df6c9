#pragma once

#include "base/LibraryNotice.h"

namespace kv {

[[nodiscard]] LibraryNotice HelpLibrary();

}  // namespace kv
