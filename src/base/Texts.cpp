#include "base/Texts.h"

namespace kv {

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string_view TakeField(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return field;
}

std::string UpperCased(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return upper;
}

std::string Counted(std::uint64_t count, std::string_view noun, std::string_view plural) {
  std::string text = std::to_string(count) + " ";
  if (count != 1 && !plural.empty()) return text.append(plural);
  return text.append(noun).append(count == 1 ? "" : "s");
}

}  // namespace kv
