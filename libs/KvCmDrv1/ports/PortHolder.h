#pragma once

#include <string>

namespace kv {

// Which program has a device open.
struct PortHolder {
  std::string name;        // "kvsim (process 1234)", "this program"; empty: none was seen
  bool isCertain = false;  // all programs could be looked at: when none was seen, none has it open
};

// Looks through all programs; where the system does not tell, nothing is certain. `path` may be a link to the device.
// `handles`: how many of this program's own do not count, those of the caller.
[[nodiscard]] PortHolder FindPortHolder(const std::string& path, int handles);

}  // namespace kv
