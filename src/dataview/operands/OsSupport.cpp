#include "dataview/operands/OsSupport.h"

#include <algorithm>
#include <utility>

#include "base/AnsiText.h"
#include "dataview/operands/OperandCatalogue.h"
#include "link/OsVersion.h"
#include "models/ModelCatalogue.h"
#include "models/ModelFit.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int64_t kFirstCurrentColourOs = 1001;  // 1.1
constexpr int kFirstCurrentPlainOs = 300;             // 3.00

LinkError OtherModel(const std::string& found, std::string_view model) {
  return {.code = LinkErrorCode::NotSupported,
          .doing = "identifying the controller",
          .happened = "it is of the model " + found + ", but these grids are those of " + std::string(model) +
                      "; nothing was read or written",
          .cause = "another controller is connected, or another model was selected",
          .cure = "connect the right controller, or close the view, select " + found +
                  " in the list of models of the main window and open the view again"};
}

}  // namespace

bool IsOsCurrent(std::string_view model, std::string_view osVersion) {
  if (IsColourModel(model) || IsK230Model(model)) {
    const auto version = ParseColourOsVersion(osVersion);
    return version && version->Number() >= kFirstCurrentColourOs;
  }
  return ParsePlainOsVersion(osVersion).value_or(0) >= kFirstCurrentPlainOs;
}

std::int32_t OperandCountWithOs(OperandTypeCode type, std::string_view model, std::string_view osVersion) {
  return IsOsCurrent(model, osVersion) ? OperandCount(type, model) : LegacyOsOperandCount(type, model);
}

bool AreRegionsSupported(std::string_view model, std::string_view osVersion, std::span<const Region> regions) {
  return IsOsCurrent(model, osVersion) || std::ranges::all_of(regions, [model](const Region& region) {
           return region.to <= LegacyOsOperandCount(region.type, model);
         });
}

std::expected<std::string, LinkError> OsVersionOf(Channel& channel, std::string_view model) {
  auto version = channel.GetVersionInfo(channel.UnitID());
  if (!version) return std::unexpected(channel.LastError());
  const std::string other = OtherModelOf(AnsiToUtf8(version->model), model);
  if (!other.empty()) return std::unexpected(OtherModel(other, model));
  return std::move(version->osVersion);
}

}  // namespace kv::mdlDataTypesView
