#pragma once

#include "base/LibraryNotice.h"

namespace kv {

[[nodiscard]] LibraryNotice SecretLibrary();

}  // namespace kv
