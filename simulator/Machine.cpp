#include "simulator/Machine.h"

#include <algorithm>
#include <random>

#include "base/Crc32.h"
#include "simulator/MachineOperands.h"
#include "simulator/OsChange.h"

namespace sim {
namespace {

constexpr std::size_t kPasswordSize = 8;
constexpr std::size_t kForceBit = 501;  // of the system bits: inputs are forced

std::uint32_t MemorySeed(const Model& model, std::uint8_t unit) {
  return kv::Crc32(std::string(model.name) + "|" + std::to_string(unit));
}

void SetFirstValues(Operands& operands, const Model& model) {
  MovingValues::SetFirstValues(operands);
  MachineOperands ofPlant(operands);
  if (model.display.kind != Display::Kind::None) Plant::SetFirstValues(ofPlant);
}

}  // namespace

Machine::Machine(const Model& itsModel, const Identity& itsIdentity, const SimulatorOptions& options)
    : model(itsModel),
      identity(itsIdentity),
      operands(itsModel),
      memory(itsModel.memory, options.memorySeed.value_or(MemorySeed(itsModel, itsIdentity.unit))),
      aurexOs(itsModel),
      compactOs(itsModel),
      resources(itsModel.display),
      panel(itsModel.display, options.powerUp ? *options.powerUp : std::random_device{}()),
      mMovingValues(options.seed) {
  SetFirstValues(operands, model);
  SetOs(itsIdentity.os);
}

void Machine::SetOs(const OsVersion& os) {
  identity.os = os;
  operands.SetOlderOs(HasOlderOperandCounts(model, os.number));
}

void Machine::Stop() {
  if (mState == RunState::Running) mState = RunState::Stopped;  // a load has stopped the program already
}

void Machine::Run() {
  restore.End();
  compactProjectBegun = false;
  if (!project.IsProgrammed()) project.Drop();
  mState = RunState::Running;
}

void Machine::Reset() {
  PowerUp();
}

void Machine::Restart() {
  if (flash.IsBusyWith(FlashWork::Kind::EraseOs)) compactOs.Drop();
  if (flash.IsBusyWith(FlashWork::Kind::Program)) {
    // Half programmed: neither the old contents nor the new.
    if (mState == RunState::Boot) {
      identity.hasOs = false;
    } else {
      identity.projectName.clear();
    }
    project.Drop();
    aurexOs.Drop();
  }
  flash = FlashWork();
  PowerUp();
}

// What was programmed takes effect, what was going on is forgotten.
void Machine::PowerUp() {
  if (const auto name = project.NewName()) identity.projectName = *name;
  const auto compactVersion = compactOs.NewVersion();
  if (const auto os = compactVersion ? compactVersion : aurexOs.NewVersion()) {
    TakeOver(*os);
  }
  if (compactVersion) compactOs.Drop();
  project.Drop();
  aurexOs.Drop();
  restore.End();
  compactProjectBegun = false;
  displayInSystemMode = false;
  MachineOperands ofPlant(operands);
  panel.Restart(ofPlant);
  mState = identity.hasOs ? RunState::Running : RunState::Boot;
}

// An Aurex O/S that follows none knows nothing of what was there before; one that follows another loses what the two do
// not have in common. Forces end in any case.
void Machine::TakeOver(const OsVersion& os) {
  if (model.family == Family::Aurex) {
    const OsChange change = identity.hasOs ? ChangeBetween(identity.os, os) : OsChange{true, true, true};
    if (change.erasesProject) {
      identity.projectName.clear();
      memory.Erase(memory.IndexOf("AP"));
    }
    for (std::size_t i = 0; change.erasesMemory && i < memory.Segments().size(); ++i) {
      if (memory.Segments()[i].letter == 'R') memory.Erase(i);
    }
    if (change.erasesOperands) {
      operands.Clear();
      SetFirstValues(operands, model);
    }
    operands.SetCell(Area::SB, kForceBit, 0);
  }
  SetOs(os);
  identity.hasOs = true;
}

void Machine::EnterBootLoader() {
  if (mState == RunState::Boot) return;
  BeginLoad();
  mState = RunState::Boot;
}

void Machine::BeginLoad() {
  restore.End();
  project.Drop();
  compactProjectBegun = false;
  mState = RunState::Loading;
}

bool Machine::TakePassword(const std::string& padded, ConnectionAccess& connection) const {
  std::string wanted = password;
  wanted.resize(kPasswordSize, ' ');
  if (!password.empty() && padded != wanted) return false;
  connection.hasAccess = true;
  return true;
}

void Machine::Advance(kv::Instant now) {
  const kv::Duration elapsed = mNow ? std::max(now - *mNow, kv::Duration{0}) : kv::Duration{0};
  mNow = std::max(mNow.value_or(now), now);
  flash.Advance(elapsed);
  mMovingValues.Advance(operands, elapsed, mState == RunState::Running);
  MachineOperands ofPlant(operands);
  panel.Advance(*mNow, ofPlant, mState == RunState::Running, displayInSystemMode);
}

}  // namespace sim
