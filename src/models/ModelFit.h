#pragma once

#include <string>
#include <string_view>

namespace kv {

// The model to select for a controller that reports itself as `reported`, where it is another one than `selected`;
// empty when the controller is of the selected model, and when its text is of no model, as a boot loader's. Q50, Q50Net
// and AurexQ50 report one text, so each of them is as good as the others.
[[nodiscard]] std::string OtherModelOf(std::string_view reported, std::string_view selected);

}  // namespace kv
