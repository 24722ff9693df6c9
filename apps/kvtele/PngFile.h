#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "KvTele2/panel/Picture.h"
#include "base/AtomicFile.h"
#include "base/LibraryNotice.h"

namespace kv::cli {

// Writes the picture as a PNG file, in place of what was there.
[[nodiscard]] std::expected<void, FileError> SavePng(const std::filesystem::path& file, const panel::Picture& picture);

[[nodiscard]] LibraryNotice PngLibrary();

}  // namespace kv::cli
