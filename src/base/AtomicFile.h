#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace kv {

// What went wrong with a file: which one, where in it (a line or an offset, when that is known), and what was expected.
struct FileError {
  std::string file = {};
  std::string place = {};
  std::string what = {};

  [[nodiscard]] std::string Text() const;  // "settings.ini, line 3: a number was expected"
};

// Writes `content` to a temporary file beside `file`, flushes it, renames it over `file` and flushes the folder. The
// file keeps its permissions; a link stays a link, and what it points at is replaced. A write-protected file is
// refused. On failure `file` is as it was and no temporary file is left. A folder that cannot be flushed (some network
// drives) is no failure: the new content is already in place.
[[nodiscard]] std::expected<void, FileError> SaveAtomically(const std::filesystem::path& file,
                                                            std::string_view content);

// The file from its beginning; refused when it is missing or no plain file, or cannot be opened, with the reason.
[[nodiscard]] std::expected<std::ifstream, FileError> OpenForReading(const std::filesystem::path& file);

// The whole file; refused as above, and when it is larger than `limit` bytes.
[[nodiscard]] std::expected<std::string, FileError> ReadWholeFile(const std::filesystem::path& file, std::size_t limit);

}  // namespace kv
