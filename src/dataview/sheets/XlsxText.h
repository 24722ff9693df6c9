#pragma once

#include <string>
#include <string_view>

// In .xlsx files "_x000D_" stands for a character that XML cannot hold, and "_x005F_" for the "_" of a text that looks
// so by itself.
namespace kv {

[[nodiscard]] std::string UnescapedText(std::string_view text);

// Escapes what looks like such a character; those that XML cannot hold are escaped when the file is written.
[[nodiscard]] std::string EscapedText(std::string_view text);

}  // namespace kv
