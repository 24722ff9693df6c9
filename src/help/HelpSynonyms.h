#pragma once

#include <span>
#include <string_view>

namespace kv {

// Words that people say for the same thing, a group a line with blanks between: those of this help beside those of
// other tools and of the street. What only one page is about stands on that page, in its line of words.
[[nodiscard]] std::span<const std::string_view> SynonymGroups();

}  // namespace kv
