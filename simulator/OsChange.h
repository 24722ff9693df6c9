#pragma once

#include "simulator/OsVersion.h"

namespace sim {

// What the change from one O/S to another does to an Aurex controller: a newer boot loader lays out the flash anew, and
// some versions keep their operands in another form.
struct OsChange {
  bool erasesProject = false;
  bool erasesMemory = false;    // all segments of RAM
  bool erasesOperands = false;  // and starts them again from their first values

  bool operator==(const OsChange&) const = default;
};

[[nodiscard]] OsChange ChangeBetween(const OsVersion& before, const OsVersion& after);

}  // namespace sim
