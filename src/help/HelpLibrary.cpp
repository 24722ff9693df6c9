#include "help/HelpLibrary.h"

namespace kv {

// The library has no way to tell its version.
LibraryNotice HelpLibrary() {
  return {"libchm", "0.40", "LGPL-2.1-or-later"};
}

}  // namespace kv
