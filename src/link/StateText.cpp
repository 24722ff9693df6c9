#include "link/StateText.h"

namespace kv {

std::string StateText(char state) {
  switch (state) {
    case 'R':
      return "running";
    case 'S':
      return "stopped";
    case 'B':
      return "boot loader";
    case 'L':
      return "loading";
    default:
      return "unknown";
  }
}

}  // namespace kv
