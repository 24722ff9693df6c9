// Compact controllers: project and O/S downloads.
#include <chrono>
#include <cstdint>

#include "simulator/TextCommands.h"

namespace sim::commands {
namespace {

using std::chrono::milliseconds;

// How long the flash of an imitated controller takes: long enough that a tool has to poll, far below the limits of the
// tools.
constexpr milliseconds kTestTime{800};
constexpr milliseconds kOsEraseTime{2500};
constexpr milliseconds kProjectEraseTime{1500};

constexpr std::size_t kLongestName = 20;
constexpr std::size_t kLongestProjectPiece = 256;
constexpr std::size_t kOsBlock = 64;

}  // namespace

Answer EraseProject(TextCall& call) {
  Machine& machine = call.machine;
  machine.flash.Start(FlashWork::Kind::EraseProject, kProjectEraseTime);
  machine.BeginLoad();
  machine.compactProjectBegun = true;
  machine.identity.projectName.clear();
  machine.memory.Erase(machine.memory.IndexOf("AP"));
  return std::string();
}

Answer TellProjectMemory(TextCall& call) {
  return call.machine.flash.IsBusyWith(FlashWork::Kind::EraseProject) ? "B" : "I";
}

Answer NameProject(TextCall& call) {
  const std::string name = call.fields.RestAsBytes();
  if (!call.fields.IsGood() || name.size() > kLongestName) return Refuse(Refusal::Malformed);
  if (!call.machine.compactProjectBegun) return Refuse(Refusal::WrongState);
  call.machine.identity.projectName = ProjectNameIn(name);
  return std::string();
}

Answer WriteProject(TextCall& call) {
  const std::uint32_t address = call.fields.Number(6);
  const std::string bytes = call.fields.RestAsBytes();
  if (!call.fields.IsGood() || bytes.empty() || bytes.size() > kLongestProjectPiece) return Refuse(Refusal::Malformed);
  Machine& machine = call.machine;
  if (!machine.compactProjectBegun) return Refuse(Refusal::WrongState);
  const std::size_t segment = machine.memory.IndexOf("AP");
  const std::size_t size = machine.memory.Content(segment).size();
  if (address > size || bytes.size() > size - address) return Refuse(Refusal::OutsideMemory);
  machine.memory.Write(segment, address, bytes);
  return std::string();
}

Answer TestFlash(TextCall& call) {
  call.machine.flash.Start(FlashWork::Kind::Test, kTestTime);
  return std::string();
}

Answer TellFlash(TextCall& call) {
  return call.machine.flash.IsBusy() ? "10" : "20";
}

Answer EraseOs(TextCall& call) {
  call.machine.flash.Start(FlashWork::Kind::EraseOs, kOsEraseTime);
  call.machine.compactOs.Erase();
  call.machine.identity.hasOs = false;
  return std::string();
}

Answer TellOsErase(TextCall& call) {
  if (call.machine.flash.IsBusyWith(FlashWork::Kind::EraseOs)) return "10";
  return call.machine.compactOs.IsErased() ? "00" : "20";
}

Answer WriteOsBlock(TextCall& call) {
  const std::uint32_t address = call.fields.Number(4);
  const std::string block = call.fields.Bytes(kOsBlock);
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  const auto written = call.machine.compactOs.Write(address, block);
  return written ? Answer(std::string()) : Refuse(written.error());
}

}  // namespace sim::commands
