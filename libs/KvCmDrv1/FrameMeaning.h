#pragma once

#include <string>
#include <string_view>

namespace kv {

// What a frame or block message says, in a few words for the trace: "unit 1: read MI 0..59". The bytes may have been
// cut at the end. Empty when they mean nothing.
[[nodiscard]] std::string FrameMeaning(std::string_view bytes);

}  // namespace kv
