#pragma once

#include <expected>
#include <string>

#include "base/Bytes.h"
#include "download/DownloadWork.h"

namespace kv {

// The application memory of a compact controller, by text commands that carry 64 bytes each.
class CompactApplication {
 public:
  static constexpr std::size_t kBlock = 64;

  explicit CompactApplication(DownloadWork& work) : mWork(work) {}

  // All of it.
  [[nodiscard]] std::expected<Bytes, DownloadOutcome> Read();
  // What is from this place on, at most a block: fewer bytes at the end, none behind it.
  [[nodiscard]] std::expected<Bytes, DownloadOutcome> ReadBlock(std::size_t place);
  // From its beginning on. Its program must be stopped.
  [[nodiscard]] DownloadWork::Step Write(const Bytes& application);

 private:
  [[nodiscard]] DownloadWork::Step Tell(const std::string& command);

  DownloadWork& mWork;
};

}  // namespace kv
