// Any text as the reply to "GI": a table that is taken has the length of the text and lies in the memory.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "clone/CloneSegment.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view reply(reinterpret_cast<const char*>(data), size);
  const auto segments = kv::ParseSegmentTable(reply);
  if (!segments) {
    if (segments.error().empty()) std::abort();
    return 0;
  }
  if (segments->empty() || reply.size() != 9 + 19 * segments->size()) std::abort();
  for (const kv::CloneSegment& segment : *segments) {
    if (segment.code.size() != 2) std::abort();
    if (std::uint64_t{segment.start} + segment.length > std::uint64_t{1} << 32) std::abort();
  }
  return 0;
}
