#include "KvCmDrv1/FrameMeaning.h"

#include <array>

#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/BlockFacts.h"
#include "KvCmDrv1/wire/FieldReader.h"
#include "KvCmDrv1/wire/OperandTypes.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "base/Crc32.h"
#include "base/Hex.h"
#include "link/BlockOperations.h"
#include "link/ControllerErrorText.h"
#include "link/LinkTexts.h"

namespace kv {
namespace {

struct Meaning {
  std::string_view prefix;
  std::string_view text;
};

constexpr auto kCommands = std::to_array<Meaning>({
    {"ID", "identification"},
    {"DR", "system bytes"},
    {"GI", "segment table"},
    {"CCS", "stop"},
    {"CCR", "run"},
    {"CCE", "reset"},
    {"CCB", "into the boot loader"},
    {"CCM", "begin of a memory restore"},
    {"CC", "control done"},
    {"PV", "prepare a download"},
    {"WD", "write memory"},
    {"ED", "end of a memory restore"},
    {"DE", "erase the project"},
    {"DI", "state of the project memory"},
    {"LN", "project name"},
    {"LD", "project bytes"},
    {"FS", "flash test"},
    {"FI", "state of the flash"},
    {"OSE", "erase the O/S"},
    {"OSC", "erase the O/S"},
    {"OSS", "state of the erase"},
    {"OSP", "O/S block"},
    {"FW", "write flash"},
    {"RX", "read application memory"},
    {"OS", "O/S flash done"},
    {"CPSR", "line speed"},
    {"CP", "line speed done"},
    {"CB", "line speed"},
    {"RM", "memory"},
    {"IN", "information"},
    {"AC", "access"},
    {"SY", "find step"},
    {"PD", "panel description"},
    {"PC", "panel changes"},
});

// "read MI 0..59" of the text of RO or WO; empty when it is cut.
std::string OperandMeaning(std::string_view text) {
  FieldReader reader(text);
  const bool isRead = reader.Take(2) == "RO";
  reader.Take(4);  // tag
  const auto code = static_cast<std::int32_t>(reader.Hex(2));
  const std::uint32_t start = reader.Hex(4);
  const std::uint32_t count = reader.Hex(4);
  if (!reader.Good()) return {};
  const OperandType* type = FindOperandType(code);
  const std::string name = type != nullptr ? std::string(type->name) : "type " + std::to_string(code);
  return (isRead ? "read " : "write ") + RangeText(name, start, std::int64_t{start} + count - 1);
}

// "press key 3 of the panel" of the frame of a whole event. It is one when its check holds; a reply has none.
std::string PanelMeaning(std::string_view frame) {
  constexpr std::size_t kHead = 1 + 2 + 2 + 4;  // start, unit, letters, tag
  constexpr std::size_t kCheck = 8;
  constexpr std::size_t kTail = 2 + 1;  // checksum, end
  if (frame.size() < kHead + kCheck + kTail) return "panel event";
  const std::size_t end = frame.size() - kTail - kCheck;
  if (ParseUpperHex(frame.substr(end, kCheck)) != Crc32(frame.substr(1, end - 1))) return "panel event";
  const std::optional<Bytes> data = HexStringToBytes(frame.substr(kHead, end - kHead));
  return data ? PanelEventMeaning({reinterpret_cast<const char*>(data->data()), data->size()}) : "panel event";
}

std::string TextMeaning(std::string_view text) {
  const std::size_t error = text.substr(0, 7).find("ERROR");
  if (error != std::string_view::npos) {
    FieldReader reader(text.substr(error + 5));
    return "refused: " + std::string(ControllerErrorText(static_cast<int>(reader.Hex(2))).meaning);
  }
  if (text.starts_with("RO") || text.starts_with("WO")) return OperandMeaning(text);
  for (const Meaning& command : kCommands) {
    if (text.starts_with(command.prefix)) return std::string(command.text);
  }
  return "unknown command";
}

std::string FrameText(std::string_view bytes) {
  FieldReader reader(bytes.substr(1));
  const std::uint32_t unit = reader.Hex(2);
  if (!reader.Good()) return {};
  const bool isPanel = reader.Rest().starts_with("PE") && !reader.Rest().starts_with("PEERROR");
  return "unit " + std::to_string(unit) + ": " + (isPanel ? PanelMeaning(bytes) : TextMeaning(reader.Rest()));
}

std::string BlockText(std::string_view bytes) {
  if (bytes.size() < kBlockHead) return {};
  const auto number = [bytes](std::size_t at, std::size_t count) {
    return std::to_string(LittleEndian(bytes.substr(at, count)));
  };
  std::string text = "unit " + number(4, 1) + ": block " + number(6, 2) + ", ";
  const auto opCode = static_cast<std::uint16_t>(LittleEndian(bytes.substr(8, 2)));
  const bool isEvent = opCode == BlockOperation::kPanelEvent && bytes[3] == 1;
  text += isEvent ? PanelEventMeaning(bytes.substr(kBlockHead)) : std::string(BlockFactsOf(opCode).name);
  if (bytes[3] == 2) text += ", status " + number(5, 1);
  return text + ", " + number(22, 4) + " bytes";
}

}  // namespace

std::string FrameMeaning(std::string_view bytes) {
  if (bytes.empty()) return {};
  if (bytes.front() == kFrameStart) return FrameText(bytes);
  if (bytes.front() == kBlockStart) return BlockText(bytes);
  return {};
}

}  // namespace kv
