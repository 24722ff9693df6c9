#pragma once

#include <cstdlib>
#include <iostream>

// Ends a fuzz run when what has to hold for every input does not, and says what that is.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}
