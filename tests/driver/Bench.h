#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeController.h"
#include "KvCmDrv1/ChannelImpl.h"

namespace kv {

inline LinkSettings SerialSettings() {
  LinkSettings settings;
  settings.transport = Transport::Serial;
  settings.serialPort = "COM3";
  return settings;
}

// A channel on a fake controller, met and in step.
struct Bench {
  VirtualPacer pacer;
  FakeController controller{pacer};
  std::vector<std::string> messages;
  ChannelImpl channel;

  explicit Bench(const std::string& model = "K220-22-R1", const LinkSettings& settings = SerialSettings())
      : channel(
            pacer, std::make_shared<Trace>(), settings,
            [this](const LinkSettings&) { return std::make_unique<FakePort>(controller, pacer); },
            [this](const std::string& message) { messages.push_back(message); }) {
    controller.model = model;
    controller.listPayload = [] { return std::string("\x07\0", 2); };
    EXPECT_TRUE(channel.Open());
    EXPECT_TRUE(channel.ReadMI(0, 1, 1));  // the unit is met, and the link's time is known
  }

  // The next `times` requests that begin with `start` meet the fault.
  void Arm(const std::string& start, Fault fault, int times = 1) {
    controller.faultOf = [start, fault, times](const std::string& text) mutable {
      return text.starts_with(start) && times > 0 && times-- > 0 ? fault : Fault::None;
    };
  }

  [[nodiscard]] const LinkError& Error() const { return channel.LastError(); }
};

}  // namespace kv
