#pragma once

#include <string>

namespace kv {

// Who works here, for records, UTF-8: "anna" or "anna@PLANT-PC"; empty when the system does not tell. Nothing is
// allowed or refused by it.
[[nodiscard]] std::string UserName();

}  // namespace kv
