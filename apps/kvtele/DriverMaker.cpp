#include "apps/kvtele/DriverMaker.h"

#include "base/PathText.h"

namespace kv::cli {

DriverMaker::~DriverMaker() {
  if (!mControllers) return;
  if (const auto saved = mControllers->Save(); !saved)
    mErr << "Warning: the simulated controller forgets what it holds. " << saved.error() << "\n";
}

OrFailure<std::unique_ptr<CommDriver>> DriverMaker::Make(const DriverOrder& order) {
  mControllers = std::make_unique<SimulatedControllers>(order.sessionFolder);
  auto driver =
      std::make_unique<Driver>(mPacer, [this](const std::string& model) { return SimulatedLine(model); }, MakePort);
  driver->GetTrace().SetClock(mClock, mPacer);
  return SetUpDriver(std::move(driver), order, &mSocket);
}

std::unique_ptr<InProcessLine> DriverMaker::SimulatedLine(const std::string& model) {
  auto line = mControllers->NewLine(model);
  if (line) return std::move(*line);
  mErr << line.error() << "\n";
  return nullptr;
}

OrFailure<std::unique_ptr<CommDriver>> SetUpDriver(std::unique_ptr<Driver> driver, const DriverOrder& order,
                                                   ListeningSocket* socket) {
  SessionLink session;
  session.folder = Utf8FromPath(order.sessionFolder);
  session.socket = socket;
  driver->ConfigureForSession(session);
  (void)driver->UseSettings(order.link, false);
  if (order.traceFile.empty() || driver->GetTrace().WriteTo(order.traceFile)) return driver;
  return std::unexpected(Failure{ExitCode::BadFile, "badFile", "opening the trace file " + order.traceFile,
                                 "it cannot be written", "its folder does not exist, or there is no permission",
                                 "name another file with --trace"});
}

}  // namespace kv::cli
