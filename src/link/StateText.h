#pragma once

#include <string>

namespace kv {

// "running" for 'R'; the word for each state that a controller reports (Channel::ControllerInfo).
[[nodiscard]] std::string StateText(char state);

}  // namespace kv
