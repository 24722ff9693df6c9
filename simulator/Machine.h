#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Time.h"
#include "simulator/AurexOs.h"
#include "simulator/AurexProject.h"
#include "simulator/CompactOs.h"
#include "simulator/Controller.h"
#include "simulator/FlashWork.h"
#include "simulator/Memory.h"
#include "simulator/ModelTable.h"
#include "simulator/MovingValues.h"
#include "simulator/Operands.h"
#include "simulator/OsVersion.h"
#include "simulator/Refusal.h"
#include "simulator/Resources.h"
#include "simulator/Restore.h"
#include "simulator/panel/Panel.h"

namespace sim {

// What a controller is doing; the letters are those on the wire.
enum class RunState : char { Running = 'R', Stopped = 'S', Boot = 'B', Loading = 'L' };

// What a controller is known by.
struct Identity {
  std::uint8_t unit = 1;
  std::uint32_t serial = 0;
  OsVersion os;
  bool hasOs = true;  // false from the erase of the O/S flash until a new image is there
  std::string projectName;
};

// The inside of one controller: its parts, and the steps from one state to another. The commands work on it.
//
//   Running --CCS--> Stopped --CCR--> Running
//   any but Boot --WD, CCM, block 66, DE--> Loading --CCR, CCE, ED--> Running
//   any --CCB--> Boot --CCE, with an O/S--> Running
//
// Which step is possible when (state, flash at rest) is in the command tables; Restart cuts the flash's work short.
class Machine {
 public:
  // A controller at its first power-up. Without a seed of its own the memory depends on model and unit.
  Machine(const Model& itsModel, const Identity& itsIdentity, const SimulatorOptions& options);

  const Model& model;
  Identity identity;
  std::string password;  // empty: none
  Operands operands;
  Memory memory;
  Restore restore;
  AurexProject project;
  AurexOs aurexOs;
  CompactOs compactOs;
  Resources resources;
  FlashWork flash;
  Panel panel;
  bool displayInSystemMode = false;
  bool compactProjectBegun = false;  // DE was given and nothing has ended the download since

  [[nodiscard]] RunState State() const { return mState; }
  [[nodiscard]] char StateLetter() const { return static_cast<char>(mState); }
  // For options and state files; commands take the steps below.
  void SetState(RunState state) { mState = state; }
  // Says what is reported and how many operands there are from now on.
  void SetOs(const OsVersion& os);

  void Stop();
  void Run();
  void Reset();    // takes what was programmed into effect
  void Restart();  // power fails and comes back
  void EnterBootLoader();
  void BeginLoad();  // stops the program, drops what was being loaded before

  // Takes the password of a request: on the right one the connection has access from now on.
  [[nodiscard]] bool TakePassword(const std::string& padded, ConnectionAccess& connection) const;
  [[nodiscard]] bool MayAccess(const ConnectionAccess& connection) const {
    return password.empty() || connection.hasAccess;
  }

  void Advance(kv::Instant now);

 private:
  void PowerUp();
  void TakeOver(const OsVersion& os);

  RunState mState = RunState::Running;
  MovingValues mMovingValues;
  std::optional<kv::Instant> mNow;
};

}  // namespace sim
