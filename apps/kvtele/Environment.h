#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/PortList.h"
#include "apps/kvtele/Failure.h"
#include "base/ProgramFolders.h"
#include "desktop/Pacer.h"
#include "desktop/WallClock.h"
#include "desktop/console/ConsoleInput.h"
#include "journal/JournalDisk.h"
#include "link/CommDriver.h"
#include "secret/Secret.h"

namespace kv::cli {

// The driver that a command needs.
struct DriverOrder {
  LinkSettings link;
  std::filesystem::path sessionFolder;  // need not exist; made for a simulated controller, which keeps its memory there
  std::string traceFile;                // UTF-8; empty: no trace
};

// What the program is given from outside, so that a test can run every command in its own process. All streams carry
// UTF-8.
struct Environment {
  std::ostream& out;           // data, and nothing else
  std::ostream& err;           // messages, questions and progress
  bool errIsTerminal = false;  // progress is shown
  ConsoleInput& input;
  Pacer& pacer;
  const WallClock& clock;  // for the times in printed lines
  Secret password = {};    // of KVTELE_PASSWORD
  ProgramPlaces places;    // when --home names none
  std::function<OrFailure<std::unique_ptr<CommDriver>>(const DriverOrder&)> makeDriver;
  std::function<std::vector<SerialPortInfo>()> listSerialPorts;
  JournalDisk* journalDisk = nullptr;      // on which changes are recorded; null: they are not
  std::filesystem::path stateFolder = {};  // of the user, for the heads of journals; empty: none are kept
};

}  // namespace kv::cli
