#pragma once

#include <string>
#include <string_view>

namespace kv {

// An OLE2 compound file (version 3, sectors of 512 bytes) with one stream of that name: what an .xls file is wrapped
// in. Small streams are filled up with zero bytes to 4096, from where on they need no second kind of sector. The name
// is ASCII, at most 31 characters.
[[nodiscard]] std::string CompoundFile(std::string_view streamName, std::string_view stream);

}  // namespace kv
