#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace kv {

// Enough of a file to see later that it is another one, or has been written since.
struct FileState {
  std::filesystem::file_time_type written{};
  std::uintmax_t size = 0;

  bool operator==(const FileState&) const = default;
};

// Nothing when there is no file of that name. A link is one, wherever it leads.
[[nodiscard]] std::optional<FileState> FileStateOf(const std::filesystem::path& file);

}  // namespace kv
