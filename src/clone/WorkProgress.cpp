#include "clone/WorkProgress.h"

namespace kv {

std::string WorkProgress::Text(std::string_view stage, std::uint64_t done, std::uint64_t total) {
  constexpr std::uint64_t kKibibyte = 1024;
  if (total != mTotal) mRemaining.Begin();
  mTotal = total;
  const std::string left = mRemaining.Text(done, total);
  return std::string(stage) + ": " + std::to_string(done / kKibibyte) + " of " + std::to_string(total / kKibibyte) +
         " KiB" + (left.empty() ? "" : ", " + left);
}

}  // namespace kv
