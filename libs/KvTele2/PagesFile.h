#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/AtomicFile.h"
#include "base/LineError.h"

namespace kv {

// A Telepanel pages file (".kta"): which project of which model its pages belong to. Lines of Windows-1252 text, each
// ended by LF or CR LF, in this order:
//
//   TELEPANEL-PAGES 1
//   project <name, 1 to 20 characters>
//   model <a model's text>
//   check <CRC-32 of everything before this line, 8 hexadecimal digits>
//
// The check makes a half-written or damaged file known as such.
struct PagesFile {
  std::string project;  // UTF-8
  std::string model;    // UTF-8; one of SelectableModels()

  bool operator==(const PagesFile&) const = default;
};

inline constexpr std::size_t kLargestPagesFile = 4096;  // bytes

// What the bytes of a file say. The error names the line, counted from 1, and what was expected there.
[[nodiscard]] std::expected<PagesFile, LineError> ParsePagesFile(std::string_view bytes);
// The bytes of a file, with CR LF. `pages` must be one that a file can hold: see IsProjectName.
[[nodiscard]] std::string PrintPagesFile(const PagesFile& pages);

// Whether a project of this name (UTF-8) can have a pages file.
[[nodiscard]] bool IsProjectName(std::string_view name);

// Whether the pages are of the project that a controller says it holds (Windows-1252 bytes).
[[nodiscard]] bool IsOfProject(const PagesFile& pages, std::string_view projectName);
// What is told when they are not: both projects, and what to do. `projectName` is UTF-8.
[[nodiscard]] std::string OtherProjectText(const PagesFile& pages, const std::string& projectName);

[[nodiscard]] std::expected<PagesFile, FileError> ReadPagesFile(const std::filesystem::path& file);
[[nodiscard]] std::expected<void, FileError> SavePagesFile(const std::filesystem::path& file, const PagesFile& pages);

}  // namespace kv
