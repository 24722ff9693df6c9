#pragma once

#include <memory>

namespace kv {

// While it lives, the C library of this thread writes numbers with a decimal point, whatever the user's settings are: a
// spreadsheet library prints with it, and a file with a decimal comma cannot be opened.
class DecimalPoint {
 public:
  DecimalPoint();
  ~DecimalPoint();
  DecimalPoint(const DecimalPoint&) = delete;
  DecimalPoint& operator=(const DecimalPoint&) = delete;

 private:
  struct Before;
  std::unique_ptr<Before> mBefore;
};

}  // namespace kv
