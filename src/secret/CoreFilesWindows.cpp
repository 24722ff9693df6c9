#include <windows.h>

#include "secret/CoreFiles.h"

// As the platform documents them in werapi.h, which not every compiler can read.
extern "C" HRESULT WINAPI WerSetFlags(DWORD flags);
constexpr DWORD kNoHeap = 1;  // WER_FAULT_REPORTING_FLAG_NOHEAP

namespace kv {

void ForbidCoreFiles() {
  WerSetFlags(kNoHeap);
  SetErrorMode(SetErrorMode(0) | SEM_NOGPFAULTERRORBOX);
}

}  // namespace kv
