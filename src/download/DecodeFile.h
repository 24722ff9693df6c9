#pragma once

#include <string>
#include <string_view>

namespace kv {

// Project files are stored scrambled. Both ways back:

// A file of the Aurex family: byte i is combined with (i mod 256) by exclusive-or. The same call scrambles.
[[nodiscard]] std::string DecodeBytes(std::string_view scrambled);

// One line of a file of the compact family, without its line end: reversed, then (lineNumber mod 3) taken from the code
// of each character; codes below 0 wrap round to 255. Line numbers begin at 0.
[[nodiscard]] std::string DecodeLine(std::string_view scrambled, std::size_t lineNumber);

}  // namespace kv
