#pragma once

namespace kv {

// The version of this product, "1.0.0": major, minor and build number. It stands in the project's CMakeLists.txt.
[[nodiscard]] const char* ProgramVersion();

}  // namespace kv
