#include "download/ContentStamp.h"

#include "base/Crc32.h"

namespace kv {

ContentStamp StampOf(std::string_view bytes) {
  return {bytes.size(), Crc32(bytes)};
}

}  // namespace kv
