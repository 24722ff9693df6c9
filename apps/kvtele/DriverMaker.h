#pragma once

#include <memory>
#include <ostream>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/ListeningSocketImpl.h"
#include "apps/kvtele/Environment.h"
#include "apps/support/SimulatedControllers.h"

namespace kv::cli {

// Makes the program's driver, and keeps what must outlive it.
class DriverMaker {
 public:
  DriverMaker(Pacer& pacer, const WallClock& clock, std::ostream& err) : mPacer(pacer), mClock(clock), mErr(err) {}
  ~DriverMaker();  // says what a simulated controller could not keep
  DriverMaker(const DriverMaker&) = delete;
  DriverMaker& operator=(const DriverMaker&) = delete;

  [[nodiscard]] OrFailure<std::unique_ptr<CommDriver>> Make(const DriverOrder& order);

 private:
  [[nodiscard]] std::unique_ptr<InProcessLine> SimulatedLine(const std::string& model);

  Pacer& mPacer;
  const WallClock& mClock;
  std::ostream& mErr;
  ListeningSocketImpl mSocket;
  std::unique_ptr<SimulatedControllers> mControllers;
};

// A driver on the ordered link, with its trace on. Fails when the trace cannot be written.
[[nodiscard]] OrFailure<std::unique_ptr<CommDriver>> SetUpDriver(std::unique_ptr<Driver> driver,
                                                                 const DriverOrder& order, ListeningSocket* socket);

}  // namespace kv::cli
