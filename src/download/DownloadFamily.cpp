#include "download/DownloadFamily.h"

#include "download/CompactController.h"
#include "models/ModelCatalogue.h"

namespace kv {

std::expected<DownloadFamily, LinkError> DownloadFamilyOf(Channel& link, std::string_view reported) {
  if (IsColourModel(reported)) return DownloadFamily::Colour;
  if (link.GetDownloadEngine() != nullptr) return DownloadFamily::Aurex;
  if (link.LastError().code == LinkErrorCode::NotSupported) return DownloadFamily::Compact;
  return std::unexpected(link.LastError());
}

bool IsQ50Model(std::string_view model) {
  return ParseCompactIdentification(model).has_value();
}

DownloadFamily DownloadFamilyOfModel(std::string_view selected) {
  if (IsColourModel(selected)) return DownloadFamily::Colour;
  const bool isCompact = IsBrioModel(selected) || IsQ50Model(selected);
  return isCompact ? DownloadFamily::Compact : DownloadFamily::Aurex;
}

std::string ModelLabel(std::string_view model, std::string_view user) {
  if (user != kUserLomba) return std::string(model);
  if (model.contains("Q50") || model.contains("Q51")) return "45K";
  return model.contains("K390") ? "TS" : "";
}

}  // namespace kv
