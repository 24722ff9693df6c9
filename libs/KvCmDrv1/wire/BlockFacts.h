#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "link/DownloadEngine.h"

namespace kv {

// What the driver knows about a block operation before it sends it.
struct BlockFacts {
  std::uint16_t opCode = 0;
  bool isRead = false;           // changes nothing, and is answered at once
  std::size_t longestReply = 0;  // bytes of payload
  std::string_view name{};       // as the trace and errors say it
  bool isSlow = !isRead;         // may work for as long as the time-out allows before it answers
};

// An operation that the protocol does not have is taken for one that changes something and is answered without payload.
[[nodiscard]] const BlockFacts& BlockFactsOf(std::uint16_t opCode);

// Bytes of payload that the reply has at most.
[[nodiscard]] std::size_t LongestReplyOf(const BlockFields& fields);

}  // namespace kv
