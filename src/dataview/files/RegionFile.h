#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "dataview/RegionTable.h"

// Region files (".axt"): the regions table as a text that the user keeps and passes on. Windows-1252, lines ended by
// CR LF:
//
//   Version 100
//   Aurex                        or "Q50" for a compact model
//   <row>                        one a region: its eight cells as shown, each followed by a TAB
//   <empty line>
namespace kv::mdlDataTypesView {

// The lines are ended by CR LF, the last one too where the text says so: they are shown as they stand.
inline constexpr std::string_view kRegionFileRefusedMessage =
    "This file cannot be opened. This may be because: \r\n"
    "The file applies to a different controller model, or \r\n"
    "The file is corrupted or is in invalid format.";
inline constexpr std::string_view kRegionFileInvalidRegionsMessage =
    "This file cannot be opened. This may be because: \r\n"
    "The file contains invalid regions for the current selected PLC.";

inline constexpr std::size_t kLargestRegionFile = std::size_t{16} << 20;  // bytes

// Why a region file was not taken.
struct RegionFileFault {
  enum class Kind {
    Format,          // the tables stay as they were
    InvalidRegions,  // the regions table is emptied
  };
  Kind kind = Kind::Format;
  std::string reason;  // the place and what was expected there, for the status line: "line 7: ..."

  // What the message box says.
  [[nodiscard]] std::string_view Message() const;
};

struct RegionFileText {
  std::string bytes;
  bool charactersLost = false;  // a description has characters that Windows-1252 does not have; they became "?"
};

// Tabs and line ends within a cell become blanks.
[[nodiscard]] RegionFileText PrintRegionFile(std::span<const RegionRow> rows, std::string_view model);

// The rows of a file in the order of the table, those that are too long for one request cut into several at its end.
// They are checked against the model: its family, its types and their counts (one address too many passes, see
// IsPastOperandCount); within one type they must not overlap. A size or format that is not offered for a type becomes
// that of a new row. The values are texts to be looked at, and marked as those of a file; rows that are cut lose them.
[[nodiscard]] std::expected<std::vector<RegionRow>, RegionFileFault> ParseRegionFile(std::string_view bytes,
                                                                                     std::string_view model);

// The same with files. A file that cannot be read is a fault of its format. True when characters were lost.
[[nodiscard]] std::expected<bool, FileError> SaveRegionFile(const std::filesystem::path& file,
                                                            std::span<const RegionRow> rows, std::string_view model);
[[nodiscard]] std::expected<std::vector<RegionRow>, RegionFileFault> LoadRegionFile(const std::filesystem::path& file,
                                                                                    std::string_view model);

}  // namespace kv::mdlDataTypesView
