#pragma once

#include <cstdint>
#include <fstream>

namespace kv::test {

// A sanitizer keeps freed memory for a while, and takes its time.
#ifdef __has_feature
inline constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

// Bytes of memory that this process holds; 0 where the system does not tell, or tells what has been freed too.
inline std::int64_t MemoryHeld() {
  std::int64_t total = 0;
  std::int64_t resident = 0;
  if (kIsSanitized) return 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return resident * 4096;
}

}  // namespace kv::test
