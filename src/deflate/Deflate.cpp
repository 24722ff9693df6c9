#include "deflate/Deflate.h"

#define ZLIB_CONST  // what is compressed is not changed
#include <zlib.h>

#include <algorithm>

#include "base/ScopeGuard.h"

namespace kv {

std::optional<Bytes> Deflate(std::span<const std::uint8_t> bytes, const std::function<void()>& turn) {
  constexpr std::size_t kPiece = std::size_t{32} * 1024;
  z_stream stream{};
  if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) return std::nullopt;
  const ScopeGuard end([&stream] { (void)deflateEnd(&stream); });

  Bytes compressed(deflateBound(&stream, static_cast<uLong>(bytes.size())));
  stream.next_out = compressed.data();
  stream.avail_out = static_cast<uInt>(compressed.size());
  int result = Z_OK;
  while (result == Z_OK) {
    const auto piece = bytes.first(std::min(kPiece, bytes.size()));
    bytes = bytes.subspan(piece.size());
    stream.next_in = piece.data();
    stream.avail_in = static_cast<uInt>(piece.size());
    result = deflate(&stream, bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
    if (turn) turn();
  }
  if (result != Z_STREAM_END) return std::nullopt;
  compressed.resize(compressed.size() - stream.avail_out);
  return compressed;
}

}  // namespace kv
