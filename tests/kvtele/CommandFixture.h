#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvtele/DriverMaker.h"
#include "apps/kvtele/KvTele.h"
#include "desktop/VirtualPacer.h"
#include "simulator/SimulatedController.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TypedInput.h"

namespace kv::test {

// What a command left behind.
struct Result {
  int exit = -1;
  std::string out;
  std::string err;
  std::string trace;  // what passed on the line
};

// Runs commands in this process, on a virtual clock and on simulated controllers. A controller lives as long as the
// fixture, so one command finds what another has written.
class CommandFixture {
 public:
  CommandFixture();

  sim::SimulatorOptions options;  // of the controllers that are made from now on; the model is that of the link
  TypedInput input;
  VirtualPacer pacer;
  bool errIsTerminal = false;
  bool recordsChanges = false;  // in the session's journal, with its head in the folder "state" of `home`
  bool outIsBroken = false;     // its reader has gone away, or the disk is full
  Secret password;              // of the environment
  std::vector<SerialPortInfo> serialPorts;
  PortMaker makePort = MakePort;
  std::unique_ptr<CommDriver> driver;   // of the next command; none: the real one
  TemporaryFolder home;                 // with an empty session "Default"
  std::optional<ProgramPlaces> places;  // of the next command; none: `home` alone

  // `kvtele LINE`. Words are separated by blanks, '' keeps them together, and "@NAME" is the file of that name in
  // `home`.
  Result Run(const std::string& line);
  // `kvtele --link sim:MODEL LINE`
  Result On(const std::string& model, const std::string& line) { return Run("--link sim:" + model + " " + line); }
  [[nodiscard]] std::string PathOf(const std::string& name) const;
  // A new controller, with the options as they are then, takes the place of `model` for the next connection.
  void ReplaceController(const std::string& model) { mReplaced.push_back(std::move(mControllers[model])); }

 private:
  class Cable;
  [[nodiscard]] std::vector<std::string> WordsOf(const std::string& line) const;
  [[nodiscard]] std::unique_ptr<InProcessLine> NewLine(const std::string& model);
  [[nodiscard]] std::unique_ptr<InProcessLine> LineTo(const std::string& model);

  std::map<std::string, std::unique_ptr<sim::SimulatedController>> mControllers;
  std::vector<std::unique_ptr<sim::SimulatedController>> mReplaced;
};

}  // namespace kv::test
