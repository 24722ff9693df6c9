#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

// Without the blanks (character 32) around it.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

// Takes the field before the next `separator`, or the rest, off the front of `text`, and the separator with it.
[[nodiscard]] std::string_view TakeField(std::string_view& text, char separator);

// With the letters a to z in upper case; other bytes stay, so UTF-8 and ANSI texts keep what is not ASCII.
[[nodiscard]] std::string UpperCased(std::string_view text);

// "1 try", "2 tries"; without a plural of its own the noun gets an "s".
[[nodiscard]] std::string Counted(std::uint64_t count, std::string_view noun, std::string_view plural = {});

}  // namespace kv
