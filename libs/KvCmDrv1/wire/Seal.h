#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "KvCmDrv1/wire/AsciiCodec.h"

namespace kv {

// A reply whose seal held.
struct SealedReply {
  std::string_view text;      // without the seal
  std::uint16_t counter = 0;  // how many requests the controller has executed, 1 to 65535 and around to 1
};

// The seal that the reply to one request must carry.
class Seal {
 public:
  explicit Seal(std::string_view requestText);

  // The reply in `frame`; nothing when its seal is not that of a reply to this request.
  [[nodiscard]] std::optional<SealedReply> Open(const AsciiFrame& frame) const;

 private:
  std::uint32_t mCheckOfRequest;
};

// How far `counter` is ahead of `last` on the ring 1 to 65535: 0 to 65534.
[[nodiscard]] int StepsAhead(std::uint16_t counter, std::uint16_t last);
// Whether `counter` is 1 to 32767 ahead of `last`, on the ring 1 to 65535.
[[nodiscard]] bool IsNewer(std::uint16_t counter, std::uint16_t last);

}  // namespace kv
