#include "base/ProfileFile.h"

namespace kv {

std::optional<std::string> ReadFromProfile(const std::filesystem::path& file, std::string_view section,
                                           std::string_view key, std::size_t bufferSize) {
  return ReadByLines(file, section, key, bufferSize);
}

bool WriteToProfile(const std::filesystem::path& file, std::string_view section, std::optional<std::string_view> key,
                    std::optional<std::string_view> value) {
  return WriteByLines(file, section, key, value);
}

}  // namespace kv
