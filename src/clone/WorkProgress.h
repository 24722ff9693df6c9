#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "desktop/RemainingTime.h"

namespace kv {

// How far work is that reports its stages in bytes (CloneWork), as a line for people.
class WorkProgress {
 public:
  explicit WorkProgress(const Pacer& pacer) : mRemaining(pacer) {}

  // "OP: 4 of 102 KiB, about 12 s left". The time begins anew with work that has another total.
  [[nodiscard]] std::string Text(std::string_view stage, std::uint64_t done, std::uint64_t total);

 private:
  RemainingTime mRemaining;
  std::uint64_t mTotal = 0;
};

}  // namespace kv
