#include "base/ProgramVersion.h"

namespace kv {

const char* ProgramVersion() {
  return KV_VERSION;
}

}  // namespace kv
