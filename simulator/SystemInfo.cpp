// Who the controller is: ID, DRS, IN.
#include <array>
#include <cstdint>
#include <string>

#include "base/Hex.h"
#include "simulator/TextCommands.h"

namespace sim::commands {
namespace {

constexpr std::size_t kSystemBytes = 256;
constexpr std::uint8_t kInSystemMode = 8;  // of the panel information byte

// Byte 0 state letter, 1 to 4 serial number (most significant first, as IN shows it), 26 panel information.
std::array<std::uint8_t, kSystemBytes> SystemBytes(const Machine& machine) {
  std::array<std::uint8_t, kSystemBytes> bytes{};
  bytes[0] = static_cast<std::uint8_t>(machine.StateLetter());
  for (std::size_t i = 0; i < 4; ++i) bytes[1 + i] = static_cast<std::uint8_t>(machine.identity.serial >> (24 - 8 * i));
  bytes[26] = machine.model.panel;
  if (machine.displayInSystemMode) bytes[26] |= kInSystemMode;
  return bytes;
}

}  // namespace

Answer Identify(TextCall& call) {
  const Machine& machine = call.machine;
  const bool inBootLoader = machine.State() == RunState::Boot;
  const std::string model(inBootLoader ? machine.model.bootText : machine.model.reported);
  return model + "|" + std::string(machine.model.hardware) + "|" + ReportedVersion(machine.model, machine.identity.os) +
         "|" + ReportedBuild(machine.model, machine.identity.os);
}

Answer ReadSystemBytes(TextCall& call) {
  const std::uint32_t address = call.fields.Number(4);
  const std::uint32_t count = call.fields.Number(2);
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  if (count == 0 || address + count > kSystemBytes) return Refuse(Refusal::PastTheEnd);
  const auto bytes = SystemBytes(call.machine);
  return HexOfBytes(std::string(bytes.begin() + address, bytes.begin() + address + count));
}

Answer Inform(TextCall& call) {
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  const Machine& machine = call.machine;
  return kv::ToHex(machine.identity.serial, 8) + machine.StateLetter() + HexOfBytes(machine.identity.projectName);
}

}  // namespace sim::commands
