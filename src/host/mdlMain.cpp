#include "host/mdlMain.h"

#include "host/clsCallerExe.h"

namespace kv::mdlMain {

void Main(HostParts parts) {
  clsCallerExe caller(std::move(parts));
  caller.StartUp();
}

}  // namespace kv::mdlMain
