#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "desktop/RemainingTime.h"

namespace kv {

// How much of a download's data has gone, as a line for people. One object serves one download.
class DownloadProgress {
 public:
  explicit DownloadProgress(const Pacer& pacer) : mPacer(pacer), mRemaining(pacer) {}

  // The callback of DownloadWindow. Another total begins anew.
  void AmountSent(std::uint64_t done, std::uint64_t total);
  // For so long the download waited for an answer of the user.
  void Exclude(Duration span);

  // "4.0 of 93.8 KiB, 11.2 KiB/s, about 8 s left"; rate and time only when they mean something. Empty before anything
  // was sent.
  [[nodiscard]] std::string Text() const;

 private:
  const Pacer& mPacer;
  RemainingTime mRemaining;
  std::optional<Instant> mStart;
  std::uint64_t mDone = 0;
  std::uint64_t mTotal = 0;
};

}  // namespace kv
