#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "base/ProgramPaths.h"
#include "dataview/DataTypesView.h"

// Both grids as files, between two openings of the view and around a read-all or write-all. Each file is sound or
// known as damaged by itself: docs/file-formats.md has their lines.
namespace kv::mdlDataTypesView {

// The two files of one saved state.
struct GridFilePair {
  std::filesystem::path regions;
  std::filesystem::path operands;
};

[[nodiscard]] GridFilePair SessionGridFiles(const ProgramPaths& paths, std::string_view session);
[[nodiscard]] GridFilePair TemporaryGridFiles(const ProgramPaths& paths);

// Writes both files, making their folder when that of the temporary ones is missing. `session` is the one whose grids
// they are.
[[nodiscard]] std::expected<void, FileError> SaveGrids(const GridFilePair& files, const GridState& state,
                                                       std::string_view session);

// What the two files hold, as far as they are there, whole, and fit the model. Values come back with their origin; when
// they were read is not known any more. The texts in the regions' own column are left empty.
struct LoadedGrids {
  GridState state;
  bool isWhole = false;            // both files were there, undamaged, and everything in them was taken
  std::vector<std::string> notes;  // sentences for the user about what is missing, and where it is kept
};
// A damaged file is kept aside under its name with ".bad" behind it.
[[nodiscard]] LoadedGrids LoadGrids(const GridFilePair& files, std::string_view model);

// Deletes them, as far as they are there.
void RemoveGrids(const GridFilePair& files);

// Temporary files that are found before any read-all or write-all were left behind by a program that was killed in the
// middle of one: they become the grid files of the session that they name. True when there was one for `session`.
bool RecoverInterruptedGrids(const ProgramPaths& paths, std::string_view session);

// ---- the files' contents ----

struct GridFault {
  std::size_t line = 0;  // counted from 1
  std::string what;      // what was expected there
};

struct RegionsGrid {
  std::string session;
  std::string model;
  std::vector<RegionRow> rows;
  std::vector<std::int32_t> columnWidths;
  std::size_t leftOut = 0;  // regions that this model does not have
};
struct OperandsGrid {
  std::string session;
  std::string model;
  OperandStore operands;
  GridSettings settings;    // all but the regions' column widths
  std::size_t leftOut = 0;  // cells that this model does not have
};

[[nodiscard]] std::string PrintRegionsGrid(const GridState& state, std::string_view session);
[[nodiscard]] std::string PrintOperandsGrid(const GridState& state, std::string_view session);
[[nodiscard]] std::expected<RegionsGrid, GridFault> ParseRegionsGrid(std::string_view bytes, std::string_view model);
[[nodiscard]] std::expected<OperandsGrid, GridFault> ParseOperandsGrid(std::string_view bytes, std::string_view model);

}  // namespace kv::mdlDataTypesView
