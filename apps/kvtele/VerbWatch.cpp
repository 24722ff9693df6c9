#include "apps/kvtele/VerbWatch.h"

#include <CLI/Option.hpp>
#include <CLI/Validators.hpp>
#include <algorithm>
#include <chrono>
#include <iterator>

#include "apps/kvtele/OperandLink.h"
#include "apps/kvtele/RegionWatch.h"
#include "dataview/operands/RegionTransfer.h"

namespace kv::cli {

namespace {

constexpr int kMostChanges = 1'000'000'000;
constexpr int kMostSeconds = 31'536'000;  // a year
constexpr int kLongestPause = 3'600'000;

void SetUnreadableAside(Environment& environment, const ConnectedController& controller, std::vector<Region>& regions) {
  std::vector<Region> readable;
  std::vector<Region> unreadable;
  std::ranges::partition_copy(
      regions, std::back_inserter(readable), std::back_inserter(unreadable),
      [&](const Region& region) { return mdlDataTypesView::IsReadableFrom(controller.Model(), region.type); });
  SayUnreadable(environment, controller, unreadable);
  regions = std::move(readable);
}

}  // namespace

const char* VerbWatch::Examples() const {
  return "  kvtele --link sim:K220-22-R1 watch plant.axt            until Ctrl-C; a line for each change:\n"
         "                                                          time, type, address, old value, new value\n"
         "  kvtele --link sim:K220-22-R1 watch plant.axt --for 60   for a minute\n"
         "  kvtele --link sim:K220-22-R1 watch plant.axt --count 1  until something changes\n"
         "A link that breaks is waited for, and messages say so; a modem's call is dialled again, --redials times\n"
         "at most in a row. With --json each line is a document.\n";
}

void VerbWatch::Declare(CLI::App& app) {
  app.add_option("FILE", mFile, "Region file (.axt) that the operand view has saved")->required()->type_name("");
  app.add_option("--count", mCount, "End after so many changes")->check(CLI::Range(1, kMostChanges))->type_name("N");
  app.add_option("--for", mSeconds, "End after so many seconds")
      ->check(CLI::Range(1, kMostSeconds))
      ->type_name("SECONDS");
  app.add_option("--every", mPause, "Pause between two readings of all regions. Default: 200")
      ->check(CLI::Range(0, kLongestPause))
      ->type_name("MS");
}

VerbResult VerbWatch::Run(Environment& environment, const CommonOptions& common) {
  const auto file = RegionsFile::Read(mFile);
  if (!file) return std::unexpected(file.error());
  std::vector<Region> regions;
  const auto understand = [&](const std::string& model) -> OrFailure<std::vector<Region>> {
    const auto rows = file->RowsFor(model);
    if (!rows) return std::unexpected(rows.error());
    return regions = RegionsOf(*rows);
  };
  const auto connected = ConnectFor(environment, common, understand);
  if (!connected) return std::unexpected(connected.error());
  SetUnreadableAside(environment, **connected, regions);
  if (regions.empty()) {
    environment.err << "The file has no regions that can be read; there is nothing to watch.\n";
    return VerbOutput{};
  }
  RegionWatch watch(environment, **connected, std::move(regions),
                    {.count = static_cast<std::size_t>(mCount),
                     .span = std::chrono::seconds(mSeconds),
                     .pause = std::chrono::milliseconds(mPause),
                     .json = common.json});
  if (const auto ended = watch.Run(); !ended) return std::unexpected(ended.error());
  return VerbOutput{};  // everything has been printed
}

}  // namespace kv::cli
