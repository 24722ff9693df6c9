#pragma once

#include <cstddef>
#include <string>

#include "desktop/Prompts.h"

namespace kv::mdlDataTypesView {

// Asked before values of many operands are written; `target` names the link. Its default is No.
[[nodiscard]] MessageBox WriteQuestion(std::size_t values, const std::string& target);

}  // namespace kv::mdlDataTypesView
