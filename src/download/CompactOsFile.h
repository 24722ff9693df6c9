#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/Bytes.h"
#include "download/ContentStamp.h"
#include "download/DownloadFileError.h"
#include "download/OsNumber.h"

namespace kv {

// Bytes of an image that one command carries.
inline constexpr std::size_t kCompactOsBlock = 64;

// The head of an O/S of the compact family.
struct CompactOsHead {
  std::string model;   // "Q50", "Q51", "Q58", "PX1" or "PR1"
  OsNumber number;     // build 0 to 9
  std::string remark;  // for people, UTF-8; may be empty
};

// An O/S of the compact family (*.OSI): an image from address 0 on, head included.
struct CompactOsFile {
  CompactOsHead head;
  Bytes image;  // whole blocks of kCompactOsBlock
  ContentStamp stamp;
};

// NotLegal: no O/S image. Damaged: its length or CRC-32 is not what it says; ReadCompactOsFile says so, too, when model
// or version in the file's name are not those in its head. `file` stands in errors.
[[nodiscard]] std::expected<CompactOsFile, DownloadFileError> ParseCompactOsFile(std::string_view bytes,
                                                                                 const std::string& file);
[[nodiscard]] std::expected<CompactOsFile, DownloadFileError> ReadCompactOsFile(const std::filesystem::path& file);

// The head alone, without a look at the rest: for lists of many files.
[[nodiscard]] std::expected<CompactOsHead, DownloadFileError> ReadCompactOsHead(const std::filesystem::path& file);

}  // namespace kv
