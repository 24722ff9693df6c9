#include "link/LinkTexts.h"

namespace kv {

std::string RangeText(std::string_view name, std::int64_t first, std::int64_t last) {
  std::string text = std::string(name) + " " + std::to_string(first);
  if (last != first) text += ".." + std::to_string(last);
  return text;
}

}  // namespace kv
