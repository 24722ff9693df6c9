#pragma once

#include <cstddef>
#include <string>

#include "base/AtomicFile.h"

namespace kv {

// Where a text of lines is not as it must be, and what was expected there.
struct LineError {
  std::size_t line = 0;  // from 1 on; 0: the text as a whole
  std::string what = {};

  [[nodiscard]] std::string Place() const;  // "line 17"; empty for the whole
  [[nodiscard]] std::string Text() const;   // "line 17: expected ..."
  [[nodiscard]] FileError In(std::string file) const;
  bool operator==(const LineError&) const = default;
};

}  // namespace kv
