#include "KvCmDrv1/wire/PanelCodec.h"

#include <algorithm>
#include <bitset>
#include <utility>

#include "KvCmDrv1/wire/FieldReader.h"
#include "KvCmDrv1/wire/Requests.h"
#include "base/FieldsOfBytes.h"
#include "base/Hex.h"
#include "base/LittleEndian.h"

namespace kv {
namespace {

constexpr std::uint8_t kNoKey = 255;
constexpr std::uint8_t kNoLamp = 255;
constexpr std::uint8_t kMostKeys = 40;
constexpr std::size_t kLongestKeyName = 12;
constexpr std::size_t kDirectoryName = 32;
constexpr std::size_t kDirectoryEntry = 2 + 4 + 4 + kDirectoryName;

PanelKey TakeKey(FieldsOfBytes& reader) {
  PanelKey key;
  key.id = reader.Byte();
  const std::uint8_t lamp = reader.Byte();
  if (lamp != kNoLamp) key.lamp = lamp;
  const std::size_t length = reader.Byte();
  key.name = reader.Take(length);
  reader.Require(key.id < kMostKeys && length >= 1 && length <= kLongestKeyName);
  reader.Require(lamp == kNoLamp || lamp < kMostKeys);
  return key;
}

bool HaveOwnIds(const std::vector<PanelKey>& keys) {
  std::bitset<kMostKeys> ids;
  for (const PanelKey& key : keys) ids.set(key.id);
  return ids.count() == keys.size();
}

bool IsSizePossible(const PanelDescription& panel) {
  const bool isText = panel.kind == PanelKind::Text;
  const int mostWide = isText ? 40 : 1280;
  const int mostHigh = isText ? 16 : 1024;
  return panel.width >= 1 && panel.width <= mostWide && panel.height >= 1 && panel.height <= mostHigh;
}

PanelRecord TakeRecord(FieldsOfBytes& reader) {
  PanelRecord record;
  record.slot = reader.Word();
  record.kind = reader.Byte();
  const std::size_t length = reader.Byte();
  record.body = reader.Take(length);
  reader.Require(record.slot < kMostPanelSlots && length <= kMostPanelBody);
  return record;
}

void TakeFlags(FieldsOfBytes& reader, PanelChanges& changes) {
  const unsigned flags = reader.Byte();
  const auto bit = [flags](unsigned number) { return (flags >> number & 1U) != 0; };
  changes.hasMore = bit(0);
  changes.isSystemMode = bit(1);
  changes.isOperatedAtPanel = bit(2);
  changes.isLeaseGood = bit(3);
  changes.isLeaseElsewhere = bit(4);
  changes.beginsAnew = bit(5);
  changes.isHeld = bit(6);
  reader.Require(!bit(7));
}

}  // namespace

std::string EncodeChangesRequest(const PanelChangesRequest& request) {
  std::string data;
  AppendLittleEndian(data, request.have.epoch);
  AppendLittleEndian(data, request.have.number);
  AppendLittleEndian(data, request.most);
  AppendLittleEndian(data, request.lease);
  return data;
}

std::string EncodeEvent(const PanelEvent& event) {
  const bool isOperate = event.action == PanelAction::Operate;
  std::string data;
  AppendLittleEndian(data, static_cast<std::uint8_t>(event.action));
  const std::uint8_t takesOver = event.takesOver ? 1 : 0;
  AppendLittleEndian(data, isOperate ? takesOver : event.key.value_or(kNoKey));
  AppendLittleEndian(data, event.seen.epoch);
  AppendLittleEndian(data, event.seen.number);
  AppendLittleEndian(data, event.stamp);
  AppendLittleEndian(data, event.page);
  AppendLittleEndian(data, event.lease);
  AppendLittleEndian(data, event.x);
  AppendLittleEndian(data, event.y);
  AppendLittleEndian(data, event.most);
  AppendLittleEndian(data, event.since);
  if (isOperate) data += event.operatorName.substr(0, kLongestOperator);
  return data;
}

std::optional<PanelDescription> ReadPanelDescription(std::string_view data) {
  FieldsOfBytes reader(data);
  PanelDescription panel;
  const std::uint8_t kind = reader.Byte();
  reader.Require(kind == 1 || kind == 2);
  panel.kind = static_cast<PanelKind>(kind);
  const std::size_t keys = reader.Byte();
  panel.width = reader.Word();
  panel.height = reader.Word();
  panel.pages = reader.Word();
  panel.fontsCheck = reader.Long();
  panel.imagesCheck = reader.Long();
  reader.Require(IsSizePossible(panel) && keys <= (panel.kind == PanelKind::Text ? kMostKeys : 0U));
  while (reader.Good() && panel.keys.size() < keys) panel.keys.push_back(TakeKey(reader));
  if (!reader.Good() || reader.HasMore() || !HaveOwnIds(panel.keys)) return std::nullopt;
  return panel;
}

std::optional<PanelChanges> ReadPanelChanges(std::string_view data) {
  FieldsOfBytes reader(data);
  PanelChanges changes;
  changes.upTo.epoch = reader.Word();
  changes.upTo.number = reader.Long();
  changes.stamp = reader.Long();
  changes.page = reader.Word();
  TakeFlags(reader, changes);
  const std::uint8_t verdict = reader.Byte();
  reader.Require(changes.upTo.epoch != 0 && verdict <= static_cast<std::uint8_t>(PanelVerdict::NotNow));
  changes.verdict = static_cast<PanelVerdict>(verdict);
  changes.lease = reader.Word();
  std::bitset<kMostPanelSlots> seen;
  while (reader.HasMore()) {
    PanelRecord record = TakeRecord(reader);
    reader.Require(record.slot < seen.size() && !seen[record.slot]);
    if (!reader.Good()) return std::nullopt;
    seen.set(record.slot);
    changes.records.push_back(std::move(record));
  }
  if (!reader.Good()) return std::nullopt;
  return changes;
}

std::optional<PanelDirectoryPart> ReadPanelDirectory(std::string_view data) {
  FieldsOfBytes reader(data);
  PanelDirectoryPart part;
  part.countOfAll = reader.Word();
  reader.Require((data.size() - std::min<std::size_t>(data.size(), 2)) % kDirectoryEntry == 0);
  part.bytes = data.substr(std::min<std::size_t>(data.size(), 2));
  while (reader.HasMore()) {
    PanelResource entry;
    entry.id = reader.Word();
    entry.length = reader.Long();
    entry.check = reader.Long();
    const std::string_view name = reader.Take(kDirectoryName);
    entry.name = name.substr(0, name.find('\0'));
    part.entries.push_back(std::move(entry));
  }
  if (!reader.Good() || part.entries.size() > part.countOfAll) return std::nullopt;
  return part;
}

// What SY tells of a reply is its first 40 characters. Changes that are whole have never as many: they are a head
// alone, or a head and a record.
std::optional<PanelTextReply> ReadPanelText(std::string_view reply, std::string_view letters, std::uint16_t tag) {
  constexpr std::size_t kToldOfReply = 40;
  FieldReader reader(reply);
  reader.Expect(letters);
  reader.ExpectHex(tag, kTagDigits);
  if (!reader.Good()) return std::nullopt;
  PanelTextReply result{.data = {}, .isCut = reply.size() == kToldOfReply && letters == "PE"};
  const std::string_view digits = result.isCut ? reader.Rest().substr(0, 2 * kPanelChangesHead) : reader.Rest();
  std::vector<std::uint8_t> bytes(digits.size() / 2);
  if (!UpperHexToBytes(digits, bytes)) return std::nullopt;
  result.data.assign(bytes.begin(), bytes.end());
  return result;
}

std::string PanelEventMeaning(std::string_view data) {
  if (data.size() < kPanelEventHead) return "panel event";
  const auto number = [data](std::size_t at) { return std::to_string(LittleEndianAt<std::uint16_t>(data, at)); };
  const auto key = static_cast<std::uint8_t>(data[1]);
  const std::string where =
      key == kNoKey ? "the panel at " + number(18) + "," + number(20) : "key " + std::to_string(key) + " of the panel";
  switch (static_cast<PanelAction>(data[0])) {
    case PanelAction::Operate:
      return key == 0 ? "operate the panel" : "take over the panel";
    case PanelAction::Leave:
      return "end operating the panel";
    case PanelAction::Down:
      return "press and hold " + where;
    case PanelAction::Hold:
      return "hold on to " + where;
    case PanelAction::Up:
      return "let go of " + where;
    case PanelAction::Tap:
      return "press " + where;
  }
  return "panel event";
}

bool PanelEventChangesSomething(std::string_view data) {
  if (data.empty()) return true;
  const auto action = static_cast<PanelAction>(data[0]);
  return action != PanelAction::Leave && action != PanelAction::Hold && action != PanelAction::Up;
}

}  // namespace kv
