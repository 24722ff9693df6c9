#include "download/FileStamp.h"

#include "base/Crc32.h"

namespace kv {

FileStamp StampOf(std::string_view bytes) {
  return {bytes.size(), Crc32(bytes)};
}

}  // namespace kv
