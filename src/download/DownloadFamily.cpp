#include "download/DownloadFamily.h"

#include "download/CompactController.h"
#include "models/ModelCatalogue.h"

namespace kv {

DownloadFamily DownloadFamilyOf(std::string_view reported, std::string_view selected) {
  const std::string_view model = reported.empty() || reported == "BOOT" ? selected : reported;
  if (IsColourModel(model)) return DownloadFamily::Colour;
  const bool isCompact = IsBrioModel(model) || ParseCompactIdentification(model).has_value();
  return isCompact ? DownloadFamily::Compact : DownloadFamily::Aurex;
}

std::string ModelLabel(std::string_view model, std::string_view user) {
  if (user != kUserLomba) return std::string(model);
  if (model.contains("Q50") || model.contains("Q51")) return "45K";
  return model.contains("K390") ? "TS" : "";
}

}  // namespace kv
