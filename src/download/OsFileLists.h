#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/ProgramPaths.h"
#include "download/CompactController.h"
#include "download/OsNumber.h"

namespace kv {

// A file that can be chosen.
struct ListedFile {
  std::filesystem::path path;
  std::string text;                // what the list shows, UTF-8
  std::optional<OsNumber> number;  // in its name; nothing when it has none
  std::string detail = {};         // what else is known of the model that it is for, UTF-8

  bool operator==(const ListedFile&) const = default;
};

// Files in the order of the list: by version and build, those without a number behind them by name.
struct FileList {
  std::filesystem::path folder;
  std::vector<ListedFile> files;
  std::optional<std::size_t> preselected;  // the newest that fits the controller; nothing when none does

  [[nodiscard]] bool IsEmpty() const { return files.empty(); }
};

// The lists for an Aurex controller, from "Os Aurex/K220", "K222" or "K330" beside the program. `model` as in
// ExpectedAurexOsType. Texts: "OS - V4.60 (B19)", "FONTS - V1.30 (B0)"; of a name without digits "OS - " and the name.
// The fonts that are preselected fit the O/S that is.
struct AurexOsLists {
  FileList os;
  FileList fonts;
};
[[nodiscard]] AurexOsLists ListAurexOsFiles(const ProgramPaths& paths, std::string_view model);

// The list for a compact controller, from "OS/OS50", "OS51", "OSPX" or "OSPR" beside the program: names of its model
// and four digits. Text: "O/S Q50 V4.60 (B02)", and " (remark)" behind it when the file has one.
[[nodiscard]] FileList ListCompactOsFiles(const ProgramPaths& paths, const CompactController& controller);

}  // namespace kv
