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

// System fonts of the Aurex family (*.kft): a header of 16 bytes and the data that a controller gets.
struct FontsFile {
  std::string model;  // O/S model of the controllers that take them: "K220", "K222" or "K330"
  OsNumber number;    // build 0 to 9
  Bytes data;         // at least one byte
  ContentStamp stamp;
};

// Version and build, as the file's name has them: "1.30 (B0)".
[[nodiscard]] std::string FontsText(const FontsFile& fonts);

// NotLegal: shorter than its header, or another one. Damaged: its length or CRC-32 is not what it says; ReadFontsFile
// says so, too, when the version or build in the file's name are not those in its header. `file` stands in errors.
[[nodiscard]] std::expected<FontsFile, DownloadFileError> ParseFontsFile(std::string_view bytes,
                                                                         const std::string& file);
[[nodiscard]] std::expected<FontsFile, DownloadFileError> ReadFontsFile(const std::filesystem::path& file);

}  // namespace kv
