#pragma once

#include <cstdint>
#include <string>

#include "base/AtomicFile.h"

namespace kv {

enum class DownloadFileFault : std::uint8_t {
  Unreadable,  // missing, no rights to it, no plain file
  NotLegal,    // no file of its kind
  Damaged,     // of its kind, but what is in it does not hold together: cut, a wrong check, another name
};

// Why a download file cannot be used: the kind of fault, for texts that are settled, and file, place and expectation.
struct DownloadFileError {
  DownloadFileFault fault = DownloadFileFault::Unreadable;
  FileError where;

  [[nodiscard]] std::string Text() const { return where.Text(); }
};

}  // namespace kv
