#pragma once

#include "host/HostParts.h"

namespace kv::mdlMain {

// The program's entry: creates one clsCallerExe, lets it live its life, and releases it.
void Main(HostParts parts);

}  // namespace kv::mdlMain
