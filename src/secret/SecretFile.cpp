#include "secret/SecretFile.h"

#include <algorithm>

#include "base/PathText.h"

namespace kv {
namespace {

constexpr std::size_t kMostBytes = 1024;

}  // namespace

std::expected<Secret, SecretFileFault> ReadSecretFile(const std::filesystem::path& path) {
  auto content = ReadOwnersFile(path, kMostBytes);
  if (!content) {
    return std::unexpected(SecretFileFault{Utf8FromPath(path) + " " + content.error().happened, content.error().cure});
  }
  const bool isTooLong = content->size() > kMostBytes;
  content->resize(std::min(content->find_first_of("\r\n"), content->size()));
  if (isTooLong || content->empty()) {
    Wipe(*content);
    return std::unexpected(
        SecretFileFault{Utf8FromPath(path) + (isTooLong ? " is too long for a password" : " has an empty first line"),
                        "write the password alone into its first line"});
  }
  return Secret::TakenFrom(*content);
}

}  // namespace kv
