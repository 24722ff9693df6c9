#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>

#include "secret/Secret.h"

namespace kv {

// The password in a file: its first line, without the line end. Refused is a file that others than its owner (and the
// system's administrator) may read or change, one that is no plain file, and one that is empty or far too long.
struct SecretFileFault {
  std::string happened;  // begins with the file's name
  std::string cure;      // empty: there is none to tell
};
[[nodiscard]] std::expected<Secret, SecretFileFault> ReadSecretFile(const std::filesystem::path& path);

// What the platforms do differently: the whole file, at most `most` bytes and one more, once it has been opened and
// found to be its owner's alone. What happened does not name it.
[[nodiscard]] std::expected<std::string, SecretFileFault> ReadOwnersFile(const std::filesystem::path& path,
                                                                         std::size_t most);

}  // namespace kv
