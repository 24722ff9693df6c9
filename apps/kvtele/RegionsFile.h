#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvtele/CommonOptions.h"
#include "apps/kvtele/ConnectedController.h"
#include "apps/kvtele/Environment.h"
#include "apps/kvtele/OperandArguments.h"
#include "dataview/RegionTable.h"

// The region file that a command works with.
namespace kv::cli {

using mdlDataTypesView::RegionRow;

// A file that cannot be used; `cause` names the place in it.
[[nodiscard]] Failure BadFileFailure(const std::string& file, std::string happened, std::string cause);

// What is in a file; a failure when it cannot be read.
[[nodiscard]] OrFailure<std::string> ReadFileFor(const std::string& file, std::size_t limit);

// A region file whose regions are checked as soon as the model is known.
class RegionsFile {
 public:
  [[nodiscard]] static OrFailure<RegionsFile> Read(const std::string& file);

  // The rows for this model, in the order of the table.
  [[nodiscard]] OrFailure<std::vector<RegionRow>> RowsFor(std::string_view model) const;
  // Their regions alone.
  [[nodiscard]] OrFailure<std::vector<Region>> RegionsFor(std::string_view model) const;

 private:
  RegionsFile(std::string file, std::string bytes) : mFile(std::move(file)), mBytes(std::move(bytes)) {}

  std::string mFile;
  std::string mBytes;
};

// Tells which regions cannot be read from a controller of the model; nothing for none.
void SayUnreadable(Environment& environment, const ConnectedController& controller, std::span<const Region> regions);

}  // namespace kv::cli
