#include "simulator/Inflate.h"

#include <zlib.h>

namespace sim {

std::optional<std::string> Inflate(std::string_view stream, std::size_t size) {
  std::string plain(size, '\0');
  uLongf written = static_cast<uLongf>(size);
  uLong read = static_cast<uLong>(stream.size());
  const int result = uncompress2(reinterpret_cast<Bytef*>(plain.data()), &written,
                                 reinterpret_cast<const Bytef*>(stream.data()), &read);
  if (result != Z_OK || written != size || read != stream.size()) return std::nullopt;
  return plain;
}

}  // namespace sim
