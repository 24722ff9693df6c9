#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/ChannelImpl.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "link/DownloadEngine.h"
#include "tests/matrix/MatrixFixture.h"
#include "tests/support/Recorded.h"

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

// What a line does to the bytes of each reply.
struct LineShape {
  std::string noise{};      // before the first one
  Duration noiseLead{};     // between the noise and the reply
  Duration latency{};       // of the first one
  std::size_t pauseAt = 0;  // byte of the reply before which the line pauses
  Duration pause{};
};

// A simulated controller that counts what it does, at the end of a cable that can be pulled, and put into another one.
struct Plant {
  explicit Plant(const std::string& model, const std::string& password = {}, const sim::SimulatorOptions& like = {}) {
    Connect(model, password, like);
  }
  void Connect(const std::string& model, const std::string& password = {}, sim::SimulatorOptions options = {}) {
    options.model = model;
    options.password = password;
    options.baud = 115200;
    options.powerUp = static_cast<std::uint16_t>(++cables);
    auto counting = std::make_unique<matrix::CountingController>(sim::Controller::Create(options).value());
    controller = counting.get();
    simulated = sim::SimulatedController::CreateAround(std::move(counting), options).value();
  }
  void UseFaults(const std::vector<std::string>& rules) const { EXPECT_TRUE(simulated->UseFaults(rules)); }

  matrix::CountingController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  bool isReachable = true;
  bool isCut = false;
  bool isSilent = false;
  int connections = 0;
  int cables = 0;  // that were put in
  LineShape shape;
  PortError loss{"it was cut", "the test", "none"};
};

class PlantPort final : public Port {
 public:
  PlantPort(Plant& plant, Pacer& pacer) : mPlant(plant), mPacer(pacer) { TakeCable(); }

  std::expected<void, PortError> Open(Duration limit) override {
    if (!mPlant.isReachable) return std::unexpected(PortError{"nobody is there", "the test", "none"});
    mPlant.isCut = false;
    ++mPlant.connections;
    mIsOpen = true;
    TakeCable();
    return mLine->Open(limit);
  }
  void Close() override {
    mIsOpen = false;
    mLine->Close();
  }
  bool IsOpen() const override { return mIsOpen && (mPlant.isCut || mLine->IsOpen()); }
  Result Write(std::string_view& bytes, Duration slice) override {
    if (mPlant.isCut) return Result::Lost;
    mArrived = 0;
    if (mCable != mPlant.cables) TakeCable();
    if (!mPlant.isSilent) return mLine->Write(bytes, slice);
    bytes = {};
    return Result::Done;
  }
  Result Read(std::string& buffer, Duration slice) override {
    if (mPlant.isCut) return Result::Lost;
    for (const Instant end = mPacer.Now() + slice;;) {
      const Instant next = mOnWay.empty() ? end : std::min(end, mOnWay.front().first);
      std::string bytes;
      if (mLine->Read(bytes, std::max(next - mPacer.Now(), Duration(0))) == Result::Lost) return Result::Lost;
      for (const char byte : bytes) Delay(byte);
      for (; !mOnWay.empty() && mOnWay.front().first <= mPacer.Now(); mOnWay.pop_front())
        buffer += mOnWay.front().second;
      if (!buffer.empty()) return Result::Done;
      if (mPacer.Now() >= end) return Result::Nothing;
    }
  }
  const PortError& LossReason() const override { return mPlant.loss; }
  Duration ByteTime() const override { return Duration(87); }  // 115200 baud
  bool SetBaudRate(int) override { return true; }
  std::string Description() const override { return "the cable"; }

 private:
  void TakeCable() {
    mCable = mPlant.cables;
    mLine = std::make_unique<SimulatedPort>(mPlant.simulated->NewLine(), "", mPacer);
    if (!mIsOpen) return;
    EXPECT_TRUE(mLine->Open({}));
  }
  void Delay(char byte) {
    const LineShape& shape = mPlant.shape;
    Instant at = mPacer.Now() + shape.latency;
    if (!mOnWay.empty()) at = std::max(at, mOnWay.back().first);
    if (mArrived == 0 && !shape.noise.empty()) {
      for (const char stray : shape.noise) mOnWay.emplace_back(at, stray);
      at += shape.noiseLead;
    }
    if (mArrived++ == shape.pauseAt) at += shape.pause;
    mOnWay.emplace_back(at, byte);
  }

  Plant& mPlant;
  Pacer& mPacer;
  std::unique_ptr<SimulatedPort> mLine;
  bool mIsOpen = false;
  int mCable = 0;
  std::size_t mArrived = 0;  // bytes of the reply
  std::deque<std::pair<Instant, char>> mOnWay;
};

// A channel to such a controller, after the handshake and synchronised.
struct Fixture {
  VirtualPacer pacer;
  Plant plant;
  std::vector<std::string> messages;
  std::shared_ptr<Trace> trace = std::make_shared<Trace>();
  ChannelImpl channel;

  explicit Fixture(const std::string& model = "K220", const LinkSettings& settings = SerialSettings(),
                   const std::string& password = {}, const sim::SimulatorOptions& like = {})
      : plant(model, password, like),
        channel(
            pacer, trace, settings, [this](const LinkSettings&) { return std::make_unique<PlantPort>(plant, pacer); },
            [this](const std::string& message) { messages.push_back(message); }) {
    EXPECT_TRUE(channel.Open());
    EXPECT_TRUE(channel.ReadMI(0, 1, 1));  // the handshake is done, and the time of the link is known
  }
  ~Fixture() {
    test::ExpectAsRecorded([this] { return All(); });
  }
  // What passed, what was told, and the counts.
  [[nodiscard]] std::string All() const {
    std::string all = test::TrafficText(trace->Text());
    for (const std::string& message : messages) all += message + "\n";
    const LinkQuality q = channel.Quality();
    for (const std::uint64_t count : {q.exchanges, q.repeats, q.errors, q.bytesSent, q.bytesReceived})
      all += std::to_string(count) + " ";
    return all + "\n" + Error().Text() + "\n";
  }
  [[nodiscard]] const LinkError& Error() const { return channel.LastError(); }
};

// A block message that is no read.
inline bool BeginDownload(Channel& channel) {
  DownloadEngine& engine = *channel.GetDownloadEngine();
  engine.SetMessage({.opCode = 66});
  return engine.SendWithData(Bytes(8, ' ')) && engine.ReplyStatus() == kBlockDone;
}

}  // namespace kv
