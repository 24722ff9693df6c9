#include "base/PathText.h"

#include <system_error>

namespace kv {

std::filesystem::path PathFromUtf8(std::string_view text) {
  try {  // the conversion to the platform's characters throws
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
  } catch (const std::system_error&) {
    return {};
  }
}

std::string Utf8FromPath(const std::filesystem::path& path) {
  try {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
  } catch (const std::system_error&) {
    return {};
  }
}

}  // namespace kv
