#include "deflate/DeflateLibrary.h"

#include <zlib.h>

namespace kv {

LibraryNotice DeflateLibrary() {
  return {"zlib", zlibVersion(), "Zlib"};
}

}  // namespace kv
