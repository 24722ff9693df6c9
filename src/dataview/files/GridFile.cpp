#include "dataview/files/GridFile.h"

#include <optional>
#include <system_error>
#include <utility>

#include "base/FilePlatform.h"
#include "base/PathText.h"
#include "dataview/files/GridText.h"
#include "host/shared/GridFileNames.h"

namespace kv::mdlDataTypesView {
namespace {

namespace fs = std::filesystem;

std::expected<void, FileError> SaveGrids(const GridFilePair& files, const GridState& state, std::string_view session) {
  if (const auto saved = SaveAtomically(files.regions, PrintRegionsGrid(state, session)); !saved) return saved;
  return SaveAtomically(files.operands, PrintOperandsGrid(state, session));
}

bool IsThere(const fs::path& file) {
  std::error_code ignored;
  return fs::exists(file, ignored);
}

void RemoveFile(const fs::path& file) {
  std::error_code ignored;
  fs::remove(file, ignored);
}

// Keeps a file aside that cannot be used, and returns what there is to say about it.
std::string KeepAside(const fs::path& file, const std::string& why) {
  fs::path aside = file;
  aside += ".bad";
  std::error_code error;
  fs::rename(file, aside, error);
  const std::string kept = error ? "It could not be kept aside and will be written over."
                                 : "It is kept as " + Utf8FromPath(aside.filename()) + ".";
  return "The saved grid " + Utf8FromPath(file.filename()) + " cannot be used (" + why + "). " + kept;
}

// What a file holds, by `parse`. Nothing, with a note where there is something to say, when it is missing or cannot be
// used.
template <typename Grid>
std::optional<Grid> LoadHalf(const fs::path& file, std::string_view model, std::vector<std::string>& notes,
                             std::expected<Grid, LineError> (*parse)(std::string_view, std::string_view)) {
  if (!IsThere(file)) return std::nullopt;
  const auto bytes = ReadWholeFile(file, kLargestGridFile);
  if (!bytes) {
    notes.push_back(KeepAside(file, bytes.error().what));
    return std::nullopt;
  }
  auto grid = parse(*bytes, model);
  if (grid) return *std::move(grid);
  notes.push_back(KeepAside(file, grid.error().Text()));
  return std::nullopt;
}

std::error_code CopyToOld(const fs::path& file) {
  fs::path old = file;
  old += ".old";
  return CopyOver(file, old);
}

// Copies a file of which something is left out: the next save writes over it.
void KeepWhole(const fs::path& file, std::size_t leftOut, std::string_view what, const GridOwner& owner,
               LoadedGrids& loaded) {
  if (leftOut == 0) return;
  const std::string& model = loaded.state.operands.Model();
  const std::string kept = CopyToOld(file)
                               ? " They could not be kept aside and will be written over."
                               : " The file with them is kept as " + Utf8FromPath(file.filename()) + ".old.";
  loaded.notes.push_back(std::to_string(leftOut) + " saved " + std::string(what) + " of " + owner.model +
                         " left out: " + model + " does not have them." + kept);
}

// A damaged or made-up name must not lead out of the folder of the sessions.
bool IsFolderName(std::string_view name) {
  const fs::path path = PathFromUtf8(name);
  return path.has_filename() && path == path.filename() && path != "." && path != "..";
}

// Makes one temporary file a session's own. Nothing when there is none, or it stays where it is.
std::optional<std::string> Recover(const fs::path& temporary, const ProgramPaths& paths,
                                   fs::path GridFilePair::* half) {
  if (!IsThere(temporary)) return std::nullopt;
  const auto bytes = ReadWholeFile(temporary, kLargestGridFile);
  const auto owner = bytes ? OwnerOfGrid(*bytes) : std::unexpected(LineError());
  if (!owner || !IsFolderName(owner->session)) {
    (void)KeepAside(temporary, {});
    return std::nullopt;
  }
  if (!SaveAtomically(SessionGridFiles(paths, owner->session).*half, *bytes)) return std::nullopt;
  RemoveFile(temporary);
  return owner->session;
}

}  // namespace

GridFilePair SessionGridFiles(const ProgramPaths& paths, std::string_view session) {
  return {paths.SessionFile(session, kRegionsGridFile), paths.SessionFile(session, kOperandsGridFile)};
}

GridFilePair TemporaryGridFiles(const ProgramPaths& paths) {
  const fs::path folder = paths.Home() / "Tmp";
  return {folder / "Regions.tmp", folder / "Operands.tmp"};
}

std::expected<void, FileError> SaveSessionGrids(const ProgramPaths& paths, const GridState& state,
                                                std::string_view session) {
  return SaveGrids(SessionGridFiles(paths, session), state, session);
}

std::expected<void, FileError> SaveTemporaryGrids(const ProgramPaths& paths, const GridState& state,
                                                  std::string_view session) {
  const GridFilePair files = TemporaryGridFiles(paths);
  std::error_code ignored;  // a folder that cannot be made is a file that cannot be saved, which is told
  fs::create_directory(files.regions.parent_path(), ignored);
  return SaveGrids(files, state, session);
}

LoadedGrids LoadGrids(const GridFilePair& files, std::string_view model) {
  LoadedGrids loaded{.state = {OperandStore(model), {}, {}}, .isWhole = false, .notes = {}};
  auto operands = LoadHalf<OperandsGrid>(files.operands, model, loaded.notes, ParseOperandsGrid);
  auto regions = LoadHalf<RegionsGrid>(files.regions, model, loaded.notes, ParseRegionsGrid);
  if (operands) {
    KeepWhole(files.operands, operands->leftOut, "values", operands->owner, loaded);
    loaded.state.operands = std::move(operands->operands);
    loaded.state.settings = std::move(operands->settings);
  }
  if (regions) {
    KeepWhole(files.regions, regions->leftOut, "regions", regions->owner, loaded);
    loaded.state.regions.Assign(std::move(regions->rows));
    loaded.state.settings.regionColumnWidths = std::move(regions->columnWidths);
  }
  loaded.isWhole = operands && regions && loaded.notes.empty();
  return loaded;
}

GridFileStates StatesOf(const GridFilePair& files) {
  return {FileStateOf(files.regions), FileStateOf(files.operands)};
}

bool AreSavedSince(const GridFilePair& files, const GridFileStates& before) {
  const GridFileStates now = StatesOf(files);
  return (now[0] && now[0] != before[0]) || (now[1] && now[1] != before[1]);
}

std::expected<void, FileError> KeepOldGrids(const GridFilePair& files) {
  for (const fs::path& file : {files.regions, files.operands}) {
    const std::error_code error = IsThere(file) ? CopyToOld(file) : std::error_code();
    if (!error) continue;
    return std::unexpected(FileError{.file = Utf8FromPath(file),
                                     .place = {},
                                     .what = "another program has saved it since the view was opened, and that cannot "
                                             "be kept aside (" +
                                             SystemMessage(error) + ")"});
  }
  return {};
}

void RemoveGrids(const GridFilePair& files) {
  RemoveFile(files.regions);
  RemoveFile(files.operands);
}

bool RecoverInterruptedGrids(const ProgramPaths& paths, std::string_view session) {
  const GridFilePair temporary = TemporaryGridFiles(paths);
  const auto regions = Recover(temporary.regions, paths, &GridFilePair::regions);
  const auto operands = Recover(temporary.operands, paths, &GridFilePair::operands);
  return regions == session || operands == session;
}

}  // namespace kv::mdlDataTypesView
