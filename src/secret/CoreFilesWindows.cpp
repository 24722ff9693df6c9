// clang-format off
#include <windows.h>
#include <werapi.h>
// clang-format on

#include "secret/CoreFiles.h"

namespace kv {

void ForbidCoreFiles() {
  WerSetFlags(WER_FAULT_REPORTING_FLAG_NOHEAP);
  SetErrorMode(SetErrorMode(0) | SEM_NOGPFAULTERRORBOX);
}

}  // namespace kv
