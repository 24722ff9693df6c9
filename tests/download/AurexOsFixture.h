#pragma once

#include <string>

#include "download/clsAurexOSDownloader.h"
#include "tests/download/DownloadFixture.h"

namespace kv::test {

struct AurexOsFixture final : DownloadFixture {
  explicit AurexOsFixture(const sim::SimulatorOptions& options = Plc("K220-22-R1")) : DownloadFixture(options) {}

  // Both files, into the folder of a K220.
  void Put(const sim::OsVersion& os = {"4.75", 3}, const sim::OsVersion& fonts = {"1.30", 0}, std::size_t size = 3000) {
    const sim::Model& model = ModelCalled("K220-22-R1");
    PutFile(folder / sim::OsFileName(model, os), SampleOs("K220-22-R1", os, size));
    PutFile(folder / sim::FontsFileName(fonts), SampleFonts("K220-22-R1", fonts));
  }
  void Prepare() override { Put(); }
  [[nodiscard]] std::string Found() const override {
    const std::string truth = controller->Truth();
    if (truth.starts_with("BOOT|")) return "boot loader";
    return WithState(truth.contains("|4.75|03|") ? "new O/S" : "old O/S");
  }
  // Some of each segment of RAM.
  [[nodiscard]] std::string Memory() const {
    std::string memory;
    for (const char* address : {"00100000", "00101700", "00110000", "00114D00", "00220000", "00220200"}) {
      memory += controller->Tell("RM0000" + std::string(address) + "008000000000").substr(6);
    }
    return memory;
  }

  const std::filesystem::path folder = home.Path() / "Os Aurex" / "K220";

 private:
  void Run(Channel& link) override {
    clsAurexOSDownloader engine(desk, {desk, desk, desk, pacer, pacer}, paths);
    const bool isDone = engine.DownloadOS(link, order);
    Keep(engine);
    EXPECT_EQ(isDone, outcome.end == DownloadEnd::Done);
  }
};

}  // namespace kv::test
