#include "help/HelpLibrary.h"

namespace kv {

// The library has no way to tell its version.
LibraryNotice HelpLibrary() {
  return {"libchm", "(not told)", "LGPL-2.1-or-later"};
}

}  // namespace kv
