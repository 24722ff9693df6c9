#include <sys/resource.h>

#include "secret/CoreFiles.h"

namespace kv {

// One byte, not none: the kernel takes 0 as "no file", but pipes the core to a collector all the same; 1 means neither.
// The process stays visible to its user otherwise, who is told by it which program has a port open.
void ForbidCoreFiles() {
  rlimit limit{};
  if (getrlimit(RLIMIT_CORE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max < 1 ? limit.rlim_max : 1;
  setrlimit(RLIMIT_CORE, &limit);
}

}  // namespace kv
