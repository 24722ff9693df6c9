#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "download/clsBrioQ50OSDownloader.h"
#include "tests/download/DownloadFixture.h"

namespace kv::test {

inline constexpr const char* kOsSucceeded = "O/S Downloader: O/S Download Succeded!";
inline constexpr int kUsualBaud = 115200;

// A compact controller on a serial line that garbles what is sent at the wrong speed, or on one without a speed.
struct CompactOsFixture final : DownloadFixture {
  explicit CompactOsFixture(const sim::SimulatorOptions& options, bool isSerial = true)
      : DownloadFixture(AtUsualSpeed(options)) {
    settings.transport = isSerial ? Transport::Serial : Transport::Simulated;
    settings.serialPort = "COM3";
    settings.baudRate = options.baud == 0 ? kUsualBaud : options.baud;
    settings.timeOut = std::chrono::milliseconds(300);
    Prepare();
  }

  void Prepare() override {
    const std::pair<const char*, const char*> samples[] = {
        {"OS50", "Q50"}, {"OS51", "Q51"}, {"OS51", "Q58"}, {"OSPX", "PX1"}, {"OSPR", "PR1"}};
    for (const auto& [folder, model] : samples) Put(folder, model, {"4.71", 2});
  }
  std::filesystem::path Put(const std::string& folder, const std::string& model, const sim::OsVersion& os) {
    return PutFile(home.Path() / "OS" / folder / sim::OsFileName(ModelCalled(model), os), SampleOs(model, os));
  }
  [[nodiscard]] std::string Found() const override {
    if (controller->State() == 'B') return "boot loader";
    return WithState(controller->Truth().contains("|4.71|02|") ? "new O/S" : "old O/S");
  }
  void AnswerTo(const std::string& command, const std::string& reply) {
    controller->onText = [=, this](std::string_view text, sim::TextReply& told) {
      if (text.starts_with(command)) told.text = reply;
    };
  }

  std::filesystem::path file;  // that is sent; empty: the one of the list

 private:
  static sim::SimulatorOptions AtUsualSpeed(sim::SimulatorOptions options) {
    if (options.baud == 0) options.baud = kUsualBaud;
    return options;
  }
  void Run(Channel& link) override {
    clsBrioQ50OSDownloader engine(desk, desk, pacer, paths);
    if (!file.empty()) engine.UseFile(file);
    const bool isDone = engine.DownloadOS(link, order);
    Keep(engine);
    EXPECT_EQ(isDone, outcome.end == DownloadEnd::Done);
    EXPECT_EQ(isDone, std::ranges::count(desk.said, kOsSucceeded) == 1);
  }
};

}  // namespace kv::test
