#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "download/ContentStamp.h"
#include "download/DownloadFileError.h"

namespace kv {

// The lines of a project file before its first command: name, model, signature.
inline constexpr std::size_t kCompactProjectHeadLines = 3;

// A project of the compact family (*.d50), descrambled.
struct CompactProjectFile {
  std::string name;                   // of the project, UTF-8
  std::string nameInController;       // that its commands give it, UTF-8; empty when they give it none
  std::string model;                  // that it is made for, UTF-8
  std::vector<std::string> commands;  // in the order of sending; each can be the text of a frame
  // The last command is "CCE". Nothing in a file of this kind tells where it ends: one that lacks it may have been cut.
  bool endsWithReset = false;
  std::size_t lineCount = 0;  // of the whole file: the commands and the head
  ContentStamp stamp;
};

// NotLegal: another signature, or nowhere a line "DE" with "DI" in the next. Damaged: a line that no frame can carry.
// Empty lines at the end of the file do not count. `file` stands in errors.
[[nodiscard]] std::expected<CompactProjectFile, DownloadFileError> ParseCompactProject(std::string_view bytes,
                                                                                       const std::string& file);
[[nodiscard]] std::expected<CompactProjectFile, DownloadFileError> ReadCompactProject(
    const std::filesystem::path& file);

}  // namespace kv
