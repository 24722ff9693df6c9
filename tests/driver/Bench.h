#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "tests/matrix/MatrixBench.h"

namespace kv {

inline LinkSettings SerialSettings() {
  LinkSettings settings;
  settings.transport = Transport::Serial;
  settings.serialPort = "COM3";
  return settings;
}

// Every setting is another than the default.
inline LinkSettings UnusualSettings(Transport transport) {
  LinkSettings settings;
  settings.transport = transport;
  settings.model = "K450-45";
  settings.host = "plc.mill";
  settings.tcpPort = 65535;
  settings.serialPort = "/dev/ttyUSB0";
  settings.baudRate = 300;
  settings.framing = {7, Parity::Even, 2};
  settings.modem = {"AT&F", "0,12-34", true, std::chrono::seconds(300), 99};
  settings.unit = 255;
  settings.serialNumber = 0xFFFFFFFF;
  settings.timeOut = std::chrono::seconds(300);
  settings.tries = 10;
  settings.reconnects = false;
  return settings;
}

// A simulated controller that counts what it does, at the end of a cable that can be pulled.
struct Plant {
  explicit Plant(const std::string& model, const std::string& password = {}) {
    sim::SimulatorOptions options;
    options.model = model;
    options.password = password;
    options.baud = 115200;
    auto counting = std::make_unique<matrix::CountingController>(sim::Controller::Create(options).value());
    controller = counting.get();
    simulated = sim::SimulatedController::CreateAround(std::move(counting), options).value();
  }
  void UseFaults(const std::vector<std::string>& rules) const { EXPECT_TRUE(simulated->UseFaults(rules)); }

  matrix::CountingController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  bool isReachable = true;
  bool isCut = false;
  int connections = 0;
};

class PlantPort final : public Port {
 public:
  PlantPort(Plant& plant, Pacer& pacer) : mPlant(plant), mLine(plant.simulated->NewLine(), "", pacer) {}

  std::expected<void, PortError> Open(Duration limit) override {
    if (!mPlant.isReachable) return std::unexpected(PortError{"nobody is there", "the test", "none"});
    mPlant.isCut = false;
    ++mPlant.connections;
    return mLine.Open(limit);
  }
  void Close() override { mLine.Close(); }
  bool IsOpen() const override { return mLine.IsOpen(); }
  Result Write(std::string_view& bytes, Duration slice) override {
    return mPlant.isCut ? Result::Lost : mLine.Write(bytes, slice);
  }
  Result Read(std::string& buffer, Duration slice) override {
    return mPlant.isCut ? Result::Lost : mLine.Read(buffer, slice);
  }
  const PortError& LossReason() const override { return mLoss; }
  Duration ByteTime() const override { return Duration(87); }  // 115200 baud
  bool SetBaudRate(int) override { return true; }
  std::string Description() const override { return "the cable"; }

 private:
  Plant& mPlant;
  SimulatedPort mLine;
  PortError mLoss{"it was cut", "the test", "none"};
};

// A channel to such a controller, met and in step.
struct Bench {
  VirtualPacer pacer;
  Plant plant;
  std::vector<std::string> messages;
  std::shared_ptr<Trace> trace = std::make_shared<Trace>();
  ChannelImpl channel;

  explicit Bench(const std::string& model = "K220", const LinkSettings& settings = SerialSettings(),
                 const std::string& password = {})
      : plant(model, password),
        channel(
            pacer, trace, settings, [this](const LinkSettings&) { return std::make_unique<PlantPort>(plant, pacer); },
            [this](const std::string& message) { messages.push_back(message); }) {
    EXPECT_TRUE(channel.Open());
    EXPECT_TRUE(channel.ReadMI(0, 1, 1));  // the unit is met, and the link's time is known
  }
  [[nodiscard]] const LinkError& Error() const { return channel.LastError(); }
};

}  // namespace kv
