#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace kv {

// The file calls in which the platforms differ; FilePlatformPosix.cpp and FilePlatformWindows.cpp implement them for
// the files that save others.

// Writes `content` to the new file `temporary` and flushes it. The file gets the permissions of `model` when that
// exists. Fails with errc::file_exists, and leaves that file alone, when `temporary` is already there; after any
// other failure it is removed.
[[nodiscard]] std::error_code WriteNewFile(const std::filesystem::path& temporary, const std::filesystem::path& model,
                                           std::string_view content);

// Renames `from` over `to`, and flushes their folder.
[[nodiscard]] std::error_code ReplaceFileWith(const std::filesystem::path& to, const std::filesystem::path& from);

// Renames `from` to the name `to`, which nobody has as yet, and flushes their folder. Fails with errc::file_exists, and
// leaves both files alone, when there is something of that name.
[[nodiscard]] std::error_code MoveToFreeName(const std::filesystem::path& to, const std::filesystem::path& from);

// Copies `from` to the name `to`, over what has it.
[[nodiscard]] std::error_code CopyOver(const std::filesystem::path& from, const std::filesystem::path& to);

// What the system says of an error, in UTF-8 and without a line end.
[[nodiscard]] std::string SystemMessage(const std::error_code& code);

// Why the file cannot be opened for reading, found out by another attempt; no error when that succeeds.
[[nodiscard]] std::error_code ErrorOfOpening(const std::filesystem::path& file);

// Why the file cannot be replaced by another one, found out by an attempt to open it for that; no error when that
// succeeds, or where only the folder decides.
[[nodiscard]] std::error_code ErrorOfReplacing(const std::filesystem::path& file);

// Whether the error says that another program has the file open, or may come of that; never where that keeps nobody
// from reading and replacing it.
[[nodiscard]] bool IsHeldByAnother(const std::error_code& code);
[[nodiscard]] bool MayBeHeldByAnother(const std::error_code& code);

// The name of a file or of a folder that is there, for libraries that take names as plain characters. Empty when the
// platform has none: on Windows they lack what is not in the code page, and short names can be switched off.
[[nodiscard]] std::string NarrowName(const std::filesystem::path& file);

// A number that no other running process has.
[[nodiscard]] unsigned long ProcessNumber();

// The running executable's path; empty when the platform does not tell.
[[nodiscard]] std::filesystem::path ExecutableFile();

}  // namespace kv
