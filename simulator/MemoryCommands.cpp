// Memory by address: segment table, reads, restore, application flash.
#include <algorithm>
#include <cstdint>

#include "base/Hex.h"
#include "simulator/TextCommands.h"

namespace sim::commands {
namespace {

constexpr std::size_t kPasswordSize = 8;
constexpr std::uint32_t kLongestRead = 512;
constexpr std::size_t kFlashBlock = 64;
constexpr std::string_view kApplication = "AP";

void OpenRestore(Machine& machine) {
  machine.BeginLoad();
  machine.restore.Begin(machine.memory);
}

// The place of `length` bytes in the application memory, in which FW and RX count from 0.
Result<std::size_t> LocateInApplication(const Memory& memory, std::uint32_t offset, std::size_t length) {
  const std::size_t segment = memory.IndexOf(kApplication);
  const std::size_t size = memory.Content(segment).size();
  if (offset > size || length > size - offset) return Refuse(Refusal::OutsideMemory);
  return segment;
}

bool WritesOs(const Machine& machine) {
  return machine.State() == RunState::Boot && machine.model.osModel == "Q50";
}

}  // namespace

Answer ListSegments(TextCall& call) {
  const std::string password(call.fields.Rest());
  if (password.size() != kPasswordSize) return Refuse(Refusal::Malformed);
  if (!call.machine.TakePassword(password, call.connection)) return "0";
  const auto segments = call.machine.memory.Segments();
  std::string reply = "1" + kv::ToHex(static_cast<std::uint32_t>(segments.size()), 4);
  for (const Segment& segment : segments) {
    reply += std::string(segment.code) + segment.letter + kv::ToHex(segment.start, 8) + kv::ToHex(segment.length, 8);
  }
  return reply;
}

Answer ReadMemory(TextCall& call) {
  const std::uint32_t address = call.fields.Number(8);
  const std::uint32_t length = call.fields.Number(4);
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  if (length == 0 || length > kLongestRead) return Refuse(Refusal::PastTheEnd);
  const auto bytes = call.machine.memory.Read(address, length);
  if (!bytes) return Refuse(bytes.error());
  return kv::ToHex(address, 8) + kv::ToHex(length, 4) + HexOfBytes(*bytes);
}

Answer BeginRestore(TextCall& call) {
  OpenRestore(call.machine);
  return std::string();
}

Answer WriteMemory(TextCall& call) {
  const char letter = call.fields.Letter();
  const std::uint32_t address = call.fields.Number(8);
  const std::uint32_t count = call.fields.Number(2);
  const std::string bytes = call.fields.Bytes(count == 0 ? 256 : count);
  const bool isWellFormed = call.fields.IsGoodAndDone() && (letter == 'F' || letter == 'R') && count % 2 == 0;
  if (!isWellFormed) return Refuse(Refusal::Malformed);
  Machine& machine = call.machine;
  if (const auto fits = Restore::Check(machine.memory, letter, address, bytes); !fits) return Refuse(fits.error());
  if (!machine.restore.IsOpen()) OpenRestore(machine);
  machine.restore.Write(machine.memory, address, bytes);
  return std::string();
}

Answer EndRestore(TextCall& call) {
  if (!call.machine.restore.IsOpen()) return Refuse(Refusal::WrongState);
  return Reset(call);
}

Answer ReadApplication(TextCall& call) {
  const std::uint32_t offset = call.fields.Number(8);
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  const auto& application = call.machine.memory.Content(call.machine.memory.IndexOf(kApplication));
  std::string reply = kv::ToHex(offset, 8);
  if (offset >= application.size()) return reply;
  const std::size_t length = std::min(kFlashBlock, application.size() - offset);
  const auto first = application.begin() + offset;
  return reply + HexOfBytes(std::string(first, first + static_cast<std::ptrdiff_t>(length)));
}

Answer WriteFlash(TextCall& call) {
  const std::uint32_t address = call.fields.Number(8);
  const std::string bytes = call.fields.RestAsBytes();
  if (!call.fields.IsGood() || bytes.size() > kFlashBlock) return Refuse(Refusal::Malformed);
  if (bytes.empty()) return address == 0 ? Answer(std::string()) : Refuse(Refusal::Malformed);  // the closing text
  Machine& machine = call.machine;
  if (WritesOs(machine)) {
    const auto written = machine.compactOs.Write(address, bytes);
    return written ? Answer(std::string()) : Refuse(written.error());
  }
  const auto segment = LocateInApplication(machine.memory, address, bytes.size());
  if (!segment) return Refuse(segment.error());
  machine.memory.Write(*segment, address, bytes);
  return std::string();
}

}  // namespace sim::commands
