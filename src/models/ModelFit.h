#pragma once

#include <string>
#include <string_view>

namespace kv {

// The model to select for a controller that reports itself as `reported`, where it is another one than `selected`;
// empty when the controller is of the selected model, and when its text is of no model, as a boot loader's. Q50 and
// Q50Net report one text, so each of them is as good as the other. AurexQ50 has a text of its own and is of the other
// family, whatever hardware code it shares with them.
[[nodiscard]] std::string OtherModelOf(std::string_view reported, std::string_view selected);

}  // namespace kv
