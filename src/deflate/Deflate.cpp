#include "deflate/Deflate.h"

#include <zlib.h>

namespace kv {

std::optional<Bytes> Deflate(std::span<const std::uint8_t> bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  Bytes compressed(size);
  const int result = compress2(compressed.data(), &size, bytes.data(), static_cast<uLong>(bytes.size()), 9);
  if (result != Z_OK) return std::nullopt;
  compressed.resize(size);
  return compressed;
}

}  // namespace kv
