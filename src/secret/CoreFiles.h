#pragma once

namespace kv {

// From here on a crash of this process leaves no memory in a core file or a crash report: what a frame or a field holds
// of a password at that moment would be in it. For a program's main.
void ForbidCoreFiles();

}  // namespace kv
