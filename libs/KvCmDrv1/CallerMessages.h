#pragma once

#include <string_view>

namespace kv {

// How the message begins that a caller of a listening port was dropped; its name and the reason follow.
inline constexpr std::string_view kCallerDropped = "A caller was dropped: ";

}  // namespace kv
