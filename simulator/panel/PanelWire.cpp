#include "simulator/panel/PanelWire.h"

#include <algorithm>

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kChangesRequestSize = 10;
constexpr std::size_t kEventSize = 26;
constexpr std::size_t kLongestName = 20;
constexpr std::uint16_t kSmallestMost = 100;

// Takes numbers one behind the other from bytes that are long enough.
class Taker {
 public:
  explicit Taker(std::string_view bytes) : mBytes(bytes) {}
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Take(1)); }
  std::uint16_t Word() { return static_cast<std::uint16_t>(Take(2)); }
  std::uint32_t Double() { return Take(4); }
  std::string Rest() const { return std::string(mBytes); }

 private:
  std::uint32_t Take(std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = size; i-- > 0;) value = value << 8 | static_cast<unsigned char>(mBytes[i]);
    mBytes.remove_prefix(size);
    return value;
  }

  std::string_view mBytes;
};

// A character of Windows-1252 that can be seen, or a blank. Five bytes of that code page are no character.
bool IsCharacter(char character) {
  constexpr std::string_view kOpen = "\x81\x8D\x8F\x90\x9D";
  return static_cast<unsigned char>(character) >= ' ' && character != '\x7F' && !kOpen.contains(character);
}

// Every host shows it to its user, who has to be told of somebody.
bool IsName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName && std::ranges::all_of(name, IsCharacter);
}

bool IsPossible(const PanelEvent& event) {
  const auto action = static_cast<int>(event.action);
  if (action < 1 || action > 6) return false;
  const bool isOperate = event.action == PanelEvent::Action::Operate;
  return isOperate ? event.key <= 1 && event.lease == 0 && IsName(event.name) : event.name.empty();
}

}  // namespace

Result<ChangesRequest> ReadChangesRequest(std::string_view data, std::size_t limit) {
  if (data.size() != kChangesRequestSize) return Refuse(Refusal::Malformed);
  Taker taker(data);
  ChangesRequest request;
  request.epoch = taker.Word();
  request.number = taker.Double();
  request.most = taker.Word();
  request.lease = taker.Word();
  if (request.most < kSmallestMost || request.most > limit) return Refuse(Refusal::PastTheEnd);
  return request;
}

Result<PanelEvent> ReadPanelEvent(std::string_view data, std::size_t limit) {
  if (data.size() < kEventSize) return Refuse(Refusal::Malformed);
  Taker taker(data);
  PanelEvent event;
  event.action = static_cast<PanelEvent::Action>(taker.Byte());
  event.key = taker.Byte();
  event.epoch = taker.Word();
  event.number = taker.Double();
  event.stamp = taker.Double();
  event.page = taker.Word();
  event.lease = taker.Word();
  event.x = taker.Word();
  event.y = taker.Word();
  event.most = taker.Word();
  event.since = taker.Double();
  event.name = taker.Rest();
  if (!IsPossible(event)) return Refuse(Refusal::Malformed);
  if (event.most < kSmallestMost || event.most > limit) return Refuse(Refusal::PastTheEnd);
  return event;
}

std::string WriteChangesHead(const ChangesHead& head) {
  std::string bytes;
  AppendLittle(bytes, head.epoch, 2);
  AppendLittle(bytes, head.number, 4);
  AppendLittle(bytes, head.stamp, 4);
  AppendLittle(bytes, head.page, 2);
  AppendLittle(bytes, head.flags, 1);
  AppendLittle(bytes, static_cast<std::uint32_t>(head.verdict), 1);
  AppendLittle(bytes, head.lease, 2);
  return bytes;
}

}  // namespace sim
