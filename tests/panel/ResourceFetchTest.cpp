#include <gmock/gmock.h>

#include "KvTele2/panel/ResourceFetch.h"
#include "base/Crc32.h"
#include "desktop/VirtualPacer.h"
#include "tests/panel/Records.h"
#include "tests/support/Recorded.h"

namespace kv::panel {
namespace {

using namespace std::chrono_literals;
using namespace test;

// A controller with one font, of 2062 bytes.
struct FontPanel final : PanelLink {
  explicit FontPanel(VirtualPacer& itsPacer) : pacer(itsPacer) {}

  std::optional<PanelDirectory> Directory(PanelResourceKind, std::uint8_t) override {
    return PanelDirectory{.entries = {entry}};
  }
  std::optional<Bytes> ReadPiece(PanelResourceKind, std::uint16_t, std::uint32_t offset, std::uint32_t length,
                                 std::uint8_t) override {
    pacer.Sleep(takes);
    offsets.push_back(offset);
    lengths.push_back(length);
    if (offsets.size() == 2) atSecond(*this);
    if (error.code == LinkErrorCode::None) return Bytes(font.begin() + offset, font.begin() + offset + length);
    last = std::exchange(error, {});
    return std::nullopt;
  }
  unsigned Connection() const override { return connection; }
  const LinkError& LastError() const override { return last; }
  std::optional<PanelDescription> Describe(std::uint8_t) override { return {}; }
  std::optional<PanelChanges> Changes(const PanelChangesRequest&, std::uint8_t) override { return {}; }
  std::optional<PanelChanges> Send(const PanelEvent&, std::uint8_t) override { return {}; }
  std::optional<PanelLinkCost> Cost(std::uint8_t) override { return {}; }

  VirtualPacer& pacer;
  std::string font = "KFNT" + Byte(2) + Byte(64) + Byte(50) + Byte('A') + Words({4}) + std::string(4, 64) +
                     std::string(std::size_t{4} * 64 * 8, 'U');
  PanelResource entry{.id = 7, .length = static_cast<std::uint32_t>(font.size()), .check = Crc32(font), .name = "Big"};
  Duration takes = 1ms;
  unsigned connection = 1;
  LinkError error, last;
  std::function<void(FontPanel& panel)> atSecond = [](FontPanel&) {};
  std::vector<std::uint32_t> offsets, lengths;
};

// What came of a run: whether the font is there, and from where it was read.
struct Fetched {
  bool isHere;
  std::string name;
  std::vector<std::uint32_t> offsets, lengths;
};
using Wanted = ResourceFetch::Wanted;

Fetched Fetch(const std::function<void(FontPanel& panel)>& prepare, Wanted wanted = Wanted::All) {
  VirtualPacer pacer;
  FontPanel panel(pacer);
  prepare(panel);
  ScreenResources resources;
  ResourceFetch fetch(pacer, panel, resources, 1, wanted);
  const auto missing = [&] {
    return resources.FontOf(7) ? std::vector<Drawing::Missing>{}
                               : std::vector<Drawing::Missing>{{PanelResourceKind::Font, 7}};
  };
  for (int step = 0; step < 100 && fetch.Has(missing()); ++step) (void)fetch.Step();
  EXPECT_FALSE(fetch.Has(missing())) << "it is asked for without end";
  return {resources.FontOf(7) != nullptr, resources.NameOf(PanelResourceKind::Font, 7), panel.offsets, panel.lengths};
}

TEST(ResourceFetch, ReadsWhatIsMissingOnceAndWholeFromOneController) {
  const auto fails = [](LinkErrorCode code) {
    return [code](FontPanel& panel) { panel.atSecond = [code](FontPanel& at) { at.error.code = code; }; };
  };
  const struct {
    const char* name;
    std::function<void(FontPanel& panel)> prepare;
    bool isHere;
    std::vector<std::uint32_t> offsets;
  } cases[] = {
      {"in growing pieces", [](FontPanel&) {}, true, {0, 512, 1536}},
      {"not what its directory says", [](FontPanel& panel) { panel.entry.check ^= 1; }, false, {0, 512, 1536}},
      {"of another id", [](FontPanel& panel) { panel.entry.id = 8; }, false, {}},
      {"too long to be one", [](FontPanel& panel) { panel.entry.length = 8'388'609; }, false, {}},
      {"refused", fails(LinkErrorCode::Refused), false, {0, 512}},
      {"lost, and read anew", fails(LinkErrorCode::NoReply), true, {0, 512, 0, 1024}},
      {"over another connection",
       [](FontPanel& panel) { panel.atSecond = [](FontPanel& at) { at.connection = 2; }; },
       true,
       {0, 512, 0, 2048}},
  };
  for (const auto& each : cases) {
    const Fetched fetched = Fetch(each.prepare);
    EXPECT_EQ(fetched.isHere, each.isHere) << each.name;
    EXPECT_EQ(fetched.offsets, each.offsets) << each.name;
  }
  const Fetched named = Fetch([](FontPanel&) {}, Wanted::Names);
  EXPECT_EQ(named.name, "Big");
  EXPECT_TRUE(named.offsets.empty() && !named.isHere) << "the line is for the screen";
  // An input waits behind a piece.
  std::string pieces;
  for (const int takes : {1, 8, 9, 10, 11, 12, 13, 24, 25, 26, 39, 40, 41, 49, 50, 51, 99, 100, 101, 200}) {
    pieces += std::to_string(takes) + " ms:";
    for (const auto length : Fetch([takes](FontPanel& panel) { panel.takes = takes * 1ms; }).lengths)
      pieces += " " + std::to_string(length);
    pieces += "\n";
  }
  ExpectAsRecorded([&pieces] { return pieces; });
}

}  // namespace
}  // namespace kv::panel
