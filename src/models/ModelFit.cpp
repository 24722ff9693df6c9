#include "models/ModelFit.h"

#include <algorithm>

#include "models/ModelCatalogue.h"

namespace kv {

std::string OtherModelOf(std::string_view reported, std::string_view selected) {
  std::string found = ModelOfIdentification(reported);
  const bool isSame =
      found == ModelOfIdentification(selected) || (IsCompactDriverModel(found) && IsCompactDriverModel(selected));
  if (isSame || std::ranges::find(SelectableModels(), found) == SelectableModels().end()) return {};
  return found;
}

}  // namespace kv
