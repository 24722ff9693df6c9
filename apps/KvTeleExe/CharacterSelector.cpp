#include "apps/KvTeleExe/CharacterSelector.h"

#include "desktop/ui/RunDialog.h"
#include "editors/ui/frmHexSelector.h"

namespace kv {

std::optional<std::string> CharacterSelector::Edit(const std::string& hexCode) {
  return frmHexSelector(mWindowsFile, DialogOwner()).Edit(hexCode);
}

}  // namespace kv
