#include "clone/CloneSegment.h"

#include <algorithm>

#include "base/Hex.h"

namespace kv {
namespace {

constexpr std::string_view kGiven = "GI1";
constexpr std::size_t kCountDigits = 4;
constexpr std::size_t kChecksum = 2;
constexpr std::size_t kEntry = 19;  // code, letter, start, length
constexpr std::size_t kCode = 2;

std::expected<CloneSegment, std::string> ParseEntry(std::string_view entry) {
  const auto isPrintable = [](char c) { return c > ' ' && c < 0x7F; };
  const auto start = ParseHex(entry.substr(kCode + 1, kAddressDigits));
  const auto length = ParseHex(entry.substr(kCode + 1 + kAddressDigits, kAddressDigits));
  if (!std::ranges::all_of(entry.substr(0, kCode), isPrintable)) return std::unexpected("its code cannot be printed");
  if (!start || !length) return std::unexpected("its start or length is no hexadecimal number");
  if (std::uint64_t{*start} + *length > std::uint64_t{1} << 32) {
    return std::unexpected("it reaches past address FFFFFFFF");
  }
  const MemoryKind kind = entry[kCode] == 'F' ? MemoryKind::Flash : MemoryKind::Ram;
  return CloneSegment{std::string(entry.substr(0, kCode)), kind, *start, *length};
}

// The characters of all entries; their number has been held against the count.
std::expected<std::string_view, std::string> EntriesOf(std::string_view reply) {
  if (reply.find("ERROR") != std::string_view::npos) {
    return std::unexpected("the controller refused to name its segments: " + std::string(reply));
  }
  if (!reply.starts_with(kGiven)) return std::unexpected("the controller did not accept the password");
  reply.remove_prefix(kGiven.size());
  const auto count = ParseHex(reply.substr(0, kCountDigits));
  if (!count || reply.size() < kCountDigits) return std::unexpected("the number of segments cannot be read");
  if (*count == 0) return std::unexpected("the controller has no segments");
  reply.remove_prefix(kCountDigits);
  if (reply.size() != *count * kEntry + kChecksum) {
    return std::unexpected("the segment table has not the length of " + std::to_string(*count) + " segments");
  }
  reply.remove_suffix(kChecksum);
  return reply;
}

}  // namespace

std::expected<std::vector<CloneSegment>, std::string> ParseSegmentTable(std::string_view reply) {
  auto entries = EntriesOf(reply);
  if (!entries) return std::unexpected(entries.error());
  std::vector<CloneSegment> segments;
  for (; !entries->empty(); entries->remove_prefix(kEntry)) {
    auto segment = ParseEntry(entries->substr(0, kEntry));
    if (!segment) {
      return std::unexpected("segment " + std::to_string(segments.size() + 1) + " cannot be used: " + segment.error());
    }
    segments.push_back(*std::move(segment));
  }
  return segments;
}

bool IsIncluded(std::string_view code, const SegmentBoxes& boxes) {
  if (code == "HW" || code == "FT" || code == "MM") return true;
  if (code == "OP") return boxes.op;
  if (code == "DT") return boxes.dt;
  if (code == "AP") return boxes.ap;
  return code == "OS" && boxes.os;
}

}  // namespace kv
