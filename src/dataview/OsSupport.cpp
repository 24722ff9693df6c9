#include "dataview/OsSupport.h"

#include <algorithm>

#include "dataview/OperandCatalogue.h"
#include "link/OsVersion.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::int64_t kFirstCurrentColourOs = 1001;  // 1.1
constexpr int kFirstCurrentPlainOs = 300;             // 3.00

}  // namespace

bool IsOsCurrent(std::string_view model, std::string_view osVersion) {
  if (IsColourModel(model) || IsK230Model(model)) {
    const auto version = ParseColourOsVersion(osVersion);
    return version && version->Number() >= kFirstCurrentColourOs;
  }
  return ParsePlainOsVersion(osVersion).value_or(0) >= kFirstCurrentPlainOs;
}

bool AreRegionsSupported(std::string_view model, std::string_view osVersion, std::span<const Region> regions) {
  return IsOsCurrent(model, osVersion) || std::ranges::all_of(regions, [model](const Region& region) {
           return region.to <= LegacyOsOperandCount(region.type, model);
         });
}

std::expected<bool, LinkError> CheckOsSupport(Channel& channel, std::string_view model, std::span<const Region> regions,
                                              Prompts& prompts, const std::string& title) {
  const auto version = channel.GetVersionInfo(channel.UnitID());
  if (!version) return std::unexpected(channel.LastError());
  if (AreRegionsSupported(model, version->osVersion, regions)) return true;
  prompts.Show({.text = std::string(kRegionsNotSupportedMessage), .title = title, .icon = PromptIcon::Exclamation});
  return false;
}

}  // namespace kv::mdlDataTypesView
