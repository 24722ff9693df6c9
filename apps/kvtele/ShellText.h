#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kv::cli {

// One word for a shell, whatever is in it: 'it'\''s'.
[[nodiscard]] inline std::string Quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted += "'\\'";
    quoted += c;
  }
  return quoted + "'";
}

[[nodiscard]] inline std::string QuotedWords(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + Quoted(word);
  return text;
}

// The first line of every such script, behind what the shell wants there itself.
inline constexpr const char* kMadeByBuild = "# Made by the build from the parser of kvtele: changes here are lost.\n";

}  // namespace kv::cli
