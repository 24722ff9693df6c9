#pragma once

#include <array>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "base/FileState.h"
#include "base/ProgramPaths.h"
#include "dataview/GridState.h"

// Both grids as files: between two openings of the view, and around a read-all or write-all.
namespace kv::mdlDataTypesView {

inline constexpr std::size_t kLargestGridFile = std::size_t{16}
                                                << 20;  // bytes: a large model full of long texts has less

// The two files of one saved state. Each is whole or known as damaged by itself.
struct GridFilePair {
  std::filesystem::path regions;
  std::filesystem::path operands;
};

[[nodiscard]] GridFilePair SessionGridFiles(const ProgramPaths& paths, std::string_view session);
[[nodiscard]] GridFilePair TemporaryGridFiles(const ProgramPaths& paths);

// Writes both files; `session` is the one whose grids they are. The folder of the temporary files is made when it is
// missing, that of a session is not: it has been deleted, and its grids with it.
[[nodiscard]] std::expected<void, FileError> SaveSessionGrids(const ProgramPaths& paths, const GridState& state,
                                                              std::string_view session);
[[nodiscard]] std::expected<void, FileError> SaveTemporaryGrids(const ProgramPaths& paths, const GridState& state,
                                                                std::string_view session);

// What the two files hold, as far as they are there, whole, and fit the model. Values come back with their origin; when
// they were read is not known any more. The texts of the regions' values are left empty, but for those of a region
// file.
struct LoadedGrids {
  GridState state;
  bool isWhole = false;            // both files were there, undamaged, and everything in them was taken
  std::vector<std::string> notes;  // sentences for the user: what is missing, why, and where it is kept
};
// A damaged file is kept aside under its name with ".bad" behind it, a copy of one of which something does not fit with
// ".old".
[[nodiscard]] LoadedGrids LoadGrids(const GridFilePair& files, std::string_view model);

// Both files as they are now, and whether another program has saved one of them since.
using GridFileStates = std::array<std::optional<FileState>, 2>;
[[nodiscard]] GridFileStates StatesOf(const GridFilePair& files);
[[nodiscard]] bool AreSavedSince(const GridFilePair& files, const GridFileStates& before);
// Copies both, as far as they are there, to their names with ".old" behind them.
[[nodiscard]] std::expected<void, FileError> KeepOldGrids(const GridFilePair& files);

// Deletes them, as far as they are there.
void RemoveGrids(const GridFilePair& files);

// Temporary files that are found while no read-all or write-all runs were left behind by a program that was killed in
// the middle of one: they become the grid files of the session that they name, if there still is such a session. True
// when that was so for `session`.
bool RecoverInterruptedGrids(const ProgramPaths& paths, std::string_view session);

}  // namespace kv::mdlDataTypesView
