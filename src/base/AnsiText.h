#pragma once

#include <string>
#include <string_view>

namespace kv {

// Windows-1252 bytes to UTF-8 and back. The five bytes that the code page leaves open travel as the control characters
// of the same number, so every byte survives the way there and back. Characters that Windows-1252 does not have, and
// bytes that are not UTF-8, become "?".
[[nodiscard]] std::string AnsiToUtf8(std::string_view ansi);
[[nodiscard]] std::string Utf8ToAnsi(std::string_view utf8);

}  // namespace kv
