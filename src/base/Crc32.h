#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kv {

// CRC-32 of IEEE 802.3 (reflected, polynomial 0xEDB88320, start and final exclusive-or 0xFFFFFFFF): the CRC-32 of
// "123456789" is 0xCBF43926. `previous` is the result for the bytes before, so a message may be handed over in pieces.
[[nodiscard]] std::uint32_t Crc32(std::string_view bytes, std::uint32_t previous = 0);

}  // namespace kv
