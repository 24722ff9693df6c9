// Any bytes as a colour cache file: what is taken is whole and can be written again as it is, and what is salvaged of
// the rest has the bytes that its entry names. Also with a head that the reader goes on behind.

#include <cstdint>
#include <string>

#include "KvTele2/cache/CacheFile.h"
#include "base/Crc32.h"
#include "fuzz/Require.h"

namespace {

using namespace kv::cache;

void CheckWhole(const CachePart& part) {
  for (const CachedResource& one : part) {
    Require(one.bytes.size() == one.entry.length, "a resource has its length");
    Require(kv::Crc32(one.bytes) == one.entry.check, "a resource has its CRC-32");
    Require(one.entry.name.size() <= 32, "a name is no longer than a directory's");
  }
}

// False: the head was in the way.
bool Check(const std::string& bytes) {
  const CacheSalvage salvage = SalvageCache(bytes);
  CheckWhole(salvage.fonts);
  CheckWhole(salvage.images);
  const auto content = ParseCache(bytes, "fuzz");
  if (!content) {
    Require(!content.error().Text().empty(), "a refusal says why");
    return content.error().fault == CacheFault::Damaged;
  }
  if (content->fonts) CheckWhole(*content->fonts);
  if (content->images) CheckWhole(*content->images);
  Require(content->owner || (!content->fonts && !content->images), "what is there belongs to somebody");
  const auto again = CacheBytes(*content);
  Require(again.has_value(), "what was read can be written");
  Require(ParseCache(*again, "fuzz") == *content, "and is the same then");
  return true;
}

std::string WithHead(std::string bytes) {
  constexpr char kMagic[] = "SQLite format 3";
  constexpr std::size_t kPage = 512;
  if (bytes.size() < kPage) return bytes;
  bytes.resize(bytes.size() / kPage * kPage);
  const auto put = [&bytes](std::size_t at, std::uint32_t value, std::size_t count) {
    for (; count-- > 0; value >>= 8) bytes[at + count] = static_cast<char>(value & 0xFF);
  };
  bytes.replace(0, sizeof kMagic, kMagic, sizeof kMagic);
  put(16, kPage, 2);
  put(18, 0x0101, 2);
  put(28, static_cast<std::uint32_t>(bytes.size() / kPage), 4);
  put(60, 1, 4);
  put(68, 0x4B544331, 4);
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (!Check(bytes)) Check(WithHead(bytes));
  return 0;
}
