#pragma once

#include <cstdint>
#include <string>

#include "ReplayedScreen.h"
#include "base/Hex.h"
#include "simulator/HexText.h"
#include "simulator/LittleEndian.h"
#include "tests/simulator/ControllerFixture.h"

namespace sim::test {

using namespace std::chrono_literals;

// Looks at the panel of a simulated controller and presses what it names, in whichever envelope the model takes.
class PanelClient {
 public:
  explicit PanelClient(const std::string& model) : PanelClient(Options(model)) {}
  explicit PanelClient(const SimulatorOptions& options) : fixture(options) { Look(); }

  // Asks for everything that is new.
  void Look(std::uint32_t most = 512) {
    do {
      std::string request;
      AppendLittle(request, epoch, 2);
      AppendLittle(request, number, 4);
      AppendLittle(request, most, 2);
      AppendLittle(request, lease, 2);
      Take(Ask(271, "PC", request));
    } while ((flags & 1) != 0);
  }
  // The verdict; 256 and the code when it was refused.
  int Send(int action, int key = 255, int x = 0, int y = 0, const std::string& name = "") {
    std::string event;
    AppendLittle(event, static_cast<std::uint32_t>(action), 1);
    AppendLittle(event, static_cast<std::uint32_t>(key), 1);
    AppendLittle(event, epoch, 2);
    AppendLittle(event, seen.value_or(number), 4);
    AppendLittle(event, stamp, 4);
    AppendLittle(event, page, 2);
    AppendLittle(event, action == 1 ? 0 : lease, 2);
    AppendLittle(event, static_cast<std::uint32_t>(x), 2);
    AppendLittle(event, static_cast<std::uint32_t>(y), 2);
    AppendLittle(event, 512, 2);
    AppendLittle(event, number, 4);
    Take(Ask(272, "PE", event + name));
    if (action == 1 && verdict == 0) lease = replyLease;
    const int result = verdict;
    if ((flags & 1) != 0) Look();
    return result;
  }
  int Operate(int takeOver = 0) { return Send(1, takeOver, 0, 0, "anna"); }
  // Presses what has this name: 3 down, 6 tap.
  int Press(const std::string& name, int action = 6) {
    for (const auto& [slot, content] : screen.slots) {
      const auto& [kind, body] = content;
      if (kind != 6 || body.substr(10) != name) continue;
      if (slot < 64) return Send(action, static_cast<int>(slot) - 32);
      return Send(action, 255, static_cast<int>(NumberAt(body, 0, 2) + NumberAt(body, 4, 2) / 2),
                  static_cast<int>(NumberAt(body, 2, 2) + NumberAt(body, 6, 2) / 2));
    }
    ADD_FAILURE() << "nothing is called " << name;
    return -1;
  }
  // A signed number of the plant, or one of its bits.
  int Word(int address) { return static_cast<std::int16_t>(Number("03", address, 4)); }
  int Bit(int address) { return static_cast<int>(Number("01", address, 2)); }
  bool Shows(const std::string& text) const {
    for (const auto& [slot, content] : screen.slots) {
      if ((content.first == 19 || content.first == 3) && content.second.find(text) != std::string::npos) return true;
    }
    return false;
  }

  Fixture fixture;
  ReplayedScreen screen;
  std::uint32_t epoch = 0;
  std::uint32_t number = 0;
  std::uint32_t stamp = 0;
  std::uint32_t page = 0;
  std::uint32_t lease = 0;
  std::uint32_t replyLease = 0;
  std::uint32_t flags = 0;
  int verdict = 0;
  std::size_t bytes = 0;                // of all replies
  std::optional<std::uint32_t> seen{};  // another number than the newest, as what the user saw

 private:
  std::string Ask(std::uint16_t operation, const std::string& name, const std::string& data) {
    if (fixture.It().UnderstandsBlocks()) return fixture.Block(operation, 0, 0, 0, 0, data).payload;
    return kv::HexStringToBytes(fixture.Own(name, HexOfBytes(data)))
        .transform([](const auto& digits) { return std::string(digits.begin(), digits.end()); })
        .value_or("");
  }
  void Take(const std::string& reply) {
    bytes += reply.size();
    ASSERT_GE(reply.size(), 16U);
    flags = NumberAt(reply, 12, 1);
    epoch = NumberAt(reply, 0, 2);
    number = NumberAt(reply, 2, 4);
    stamp = NumberAt(reply, 6, 4);
    page = NumberAt(reply, 10, 2);
    verdict = static_cast<int>(NumberAt(reply, 13, 1));
    replyLease = NumberAt(reply, 14, 2);
    screen.Take(std::string_view(reply).substr(16), (flags & 32) != 0);
  }
  std::uint32_t Number(const std::string& type, int address, std::size_t digits) {
    const std::string values = fixture.Read(type + kv::ToHex(static_cast<std::uint32_t>(address), 4) + "0001");
    return static_cast<std::uint32_t>(std::stoul(values.substr(0, digits), nullptr, 16));
  }
};

}  // namespace sim::test
