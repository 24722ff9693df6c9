#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace sim {

// Undoes the compression of a zlib stream (RFC 1950). Nothing when it is damaged, or comes to another size than `size`.
[[nodiscard]] std::optional<std::string> Inflate(std::string_view stream, std::size_t size);

}  // namespace sim
