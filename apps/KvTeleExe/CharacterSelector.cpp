#include "apps/KvTeleExe/CharacterSelector.h"

#include <QApplication>

#include "editors/ui/frmHexSelector.h"

namespace kv {

std::optional<std::string> CharacterSelector::Edit(const std::string& hexCode) {
  return frmHexSelector(mWindowsFile, QApplication::activeWindow()).Edit(hexCode);
}

}  // namespace kv
