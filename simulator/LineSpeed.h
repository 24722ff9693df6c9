#pragma once

#include <string>

namespace sim {

// What a receiver that is set to `heardBaud` makes of bytes that were sent one behind the other at `sentBaud`, 8N1: it
// looks at the line where it expects the middle of each bit, so another speed gives other bytes, and more or fewer of
// them. The same bytes when the speeds are one, or either end has none (0).
[[nodiscard]] std::string HeardAt(std::string bytes, int sentBaud, int heardBaud);

}  // namespace sim
