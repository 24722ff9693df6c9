#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <variant>

#include "download/AurexOsFile.h"
#include "download/AurexProjectFile.h"
#include "download/CompactOsFile.h"
#include "download/CompactProjectFile.h"
#include "download/DownloadFileError.h"
#include "download/FontsFile.h"

namespace kv {

enum class DownloadFileKind : std::uint8_t { AurexProject, CompactProject, AurexOs, Fonts, CompactOs };

// By the extension, in any case: .dai, .d50, .kos, .kft, .osi.
[[nodiscard]] std::optional<DownloadFileKind> KindOfDownloadFile(const std::filesystem::path& file);

using DownloadFile = std::variant<AurexProjectFile, CompactProjectFile, AurexOsFile, FontsFile, CompactOsFile>;

// Any of the five kinds: what the extension says, unless the content is that of another one. NotLegal when it is none.
[[nodiscard]] std::expected<DownloadFile, DownloadFileError> ReadDownloadFile(const std::filesystem::path& file);

}  // namespace kv
