#pragma once

namespace kvsim {

// "kvsim make ...": writes download files for simulated controllers. The arguments begin with "make"; the exit code.
[[nodiscard]] int Make(int argc, const char* const* argv);

}  // namespace kvsim
