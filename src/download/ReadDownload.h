#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "base/PathText.h"
#include "download/DownloadFileError.h"

namespace kv {

// What the readers of this folder have in common.

// Writes the errors of one file.
class FaultsOf {
 public:
  explicit FaultsOf(std::string file) : mFile(std::move(file)) {}

  [[nodiscard]] std::unexpected<DownloadFileError> NotLegal(const std::string& what) const {
    return Make(DownloadFileFault::NotLegal, "", what);
  }
  [[nodiscard]] std::unexpected<DownloadFileError> Damaged(const std::string& place, const std::string& what) const {
    return Make(DownloadFileFault::Damaged, place, what);
  }

 private:
  [[nodiscard]] std::unexpected<DownloadFileError> Make(DownloadFileFault fault, const std::string& place,
                                                        const std::string& what) const {
    return std::unexpected(DownloadFileError{fault, {mFile, place, what}});
  }

  std::string mFile;
};

// The whole file; Unreadable when it cannot be had, NotLegal when it is larger than any file of its kind.
[[nodiscard]] std::expected<std::string, DownloadFileError> ReadDownloadBytes(const std::filesystem::path& file,
                                                                              std::size_t limit);

// Whether the CRC-32 in the four bytes at `offset` is that of `bytes` with those four taken as zero. Files carry their
// check in their heads like that.
[[nodiscard]] bool HasItsCheck(std::string_view bytes, std::size_t offset);

// "it says that it has 512 bytes, and has 500: it was cut"
[[nodiscard]] std::string WrongLengthText(std::uint64_t said, std::uint64_t found);

}  // namespace kv
