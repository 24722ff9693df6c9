#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// Whether a text tells a password: as it is, in other letters, as hexadecimal digits, in two bytes a character, and
// each of these backwards. Case never matters.
class SecretForms {
 public:
  explicit SecretForms(const std::string& secret) {
    std::string hex;
    std::string wide;
    for (const char c : secret) {
      constexpr std::string_view kDigits = "0123456789abcdef";
      const auto byte = static_cast<unsigned char>(c);
      hex += {kDigits[byte >> 4], kDigits[byte & 15U]};
      wide += {c, '\0'};
    }
    for (const std::string& form : {secret, hex, wide}) {
      mForms.push_back(Lower(form));
      mForms.emplace_back(mForms.back().rbegin(), mForms.back().rend());
    }
  }

  [[nodiscard]] bool AreIn(std::string_view text) const {
    const std::string lower = Lower(text);
    return std::ranges::any_of(mForms, [&](const std::string& form) { return lower.contains(form); });
  }

  // The files below a folder that tell it, but for those of this name.
  [[nodiscard]] std::vector<std::string> FilesIn(const std::filesystem::path& folder, const char* except = "") const {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const bool isLookedAt = entry.is_regular_file() && entry.path().filename() != except;
      if (isLookedAt && AreIn(TemporaryFolder::Content(entry))) files.push_back(entry.path().string());
    }
    return files;
  }

 private:
  static std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
  }

  std::vector<std::string> mForms;
};

}  // namespace kv::test
