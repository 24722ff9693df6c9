#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Time.h"

namespace sim {

// How a simulated controller is set up. The defaults give a controller on which every tool can succeed.
struct SimulatorOptions {
  std::string model = "K220-22-R1";  // a text of the model table (simulator/ModelTable.h)
  std::string osVersion;             // "4.60"; empty: the model's newest
  std::optional<int> osBuild;        // 0 to 99; nothing: the model's own
  std::uint8_t unit = 1;
  std::optional<std::uint32_t> serialNumber;  // nothing: by model, unit and state file
  bool boot = false;                          // starts in its boot loader
  std::string password;                       // at most 8 characters; empty: none
  std::string stateFile;                      // UTF-8 path; empty: nothing is kept
  // Speed of the imitated serial line, bits a second: how long bytes take, and which speed it hears. 0: no time, and
  // all speeds until it is told to use one.
  int baud = 0;
  kv::Duration restartTime = std::chrono::milliseconds(200);  // silence after a reset
  std::vector<std::string> faults;                            // fault rules (simulator/Faults.h)
  std::uint64_t seed = 1;                                     // of the faults and of the moving values
  std::optional<std::uint32_t> memorySeed;  // of what its memory holds at first; nothing: by model and unit alone
  // What SY tells first as the number of the power-up, and where the numbers of the panel come from; nothing: chance.
  std::optional<std::uint16_t> powerUp;
};

}  // namespace sim
