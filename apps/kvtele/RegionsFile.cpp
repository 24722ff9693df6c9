#include "apps/kvtele/RegionsFile.h"

#include "apps/kvtele/OperandArguments.h"
#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "dataview/files/RegionFile.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

// Stricter than the file, in which a region may end one address too far: the controller would refuse it.
OrFailure<std::vector<RegionRow>> AllOfModel(std::vector<RegionRow> rows, std::string_view model) {
  for (const RegionRow& row : rows) {
    auto fits = CheckFitsModel(row.region, model);
    if (fits) continue;
    fits.error().cure =
        "open the file in the operand view, " + PastEndCure(row.region, model) + "; save the file again";
    return std::unexpected(std::move(fits).error());
  }
  return rows;
}

// The text of a message box, whose lines end with CR LF, as one line.
std::string WithoutLineEnds(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c != '\r' && c != '\n') line += c;
  }
  return line;
}

}  // namespace

Failure BadFileFailure(const std::string& file, std::string happened, std::string cause) {
  return {ExitCode::BadFile, "badFile", "loading " + file, std::move(happened), std::move(cause), {}};
}

OrFailure<std::string> ReadFileFor(const std::string& file, std::size_t limit) {
  auto bytes = ReadWholeFile(PathFromUtf8(file), limit);
  if (bytes) return *std::move(bytes);
  return std::unexpected(BadFileFailure(file, bytes.error().what, {}));
}

OrFailure<RegionsFile> RegionsFile::Read(const std::string& file) {
  auto bytes = ReadFileFor(file, kLargestRegionFile);
  if (!bytes) return std::unexpected(bytes.error());
  return RegionsFile(file, *std::move(bytes));
}

OrFailure<std::vector<RegionRow>> RegionsFile::RowsFor(std::string_view model) const {
  auto rows = ParseRegionFile(mBytes, model);
  if (rows) return AllOfModel(*std::move(rows), model);
  return std::unexpected(BadFileFailure(mFile, WithoutLineEnds(rows.error().Message()), rows.error().reason));
}

OrFailure<std::vector<Region>> RegionsFile::RegionsFor(std::string_view model) const {
  const auto rows = RowsFor(model);
  if (!rows) return std::unexpected(rows.error());
  std::vector<Region> regions;
  for (const RegionRow& row : *rows) regions.push_back(row.region);
  return regions;
}

void SayUnreadable(Environment& environment, const ConnectedController& controller, std::span<const Region> regions) {
  for (const Region& region : regions) {
    environment.err << RegionText(region) << " cannot be read from a controller of the model " << controller.Model()
                    << ".\n";
  }
}

}  // namespace kv::cli
