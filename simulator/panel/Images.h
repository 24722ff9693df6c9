#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/panel/Layout.h"

namespace sim {

// The images of a colour panel: what they are called by on the screen, and where something is drawn on them. Measures
// are those of a display of 800 x 480.
namespace image {

enum Id : std::uint16_t {
  Logo = 1,
  Tank = 2,
  Bowl = 3,
  Conveyor = 4,
  Bottle = 5,
  FullBottle = 6,
  Pump = 7,
  PumpRuns = 8,
  LampOff = 9,
  LampOn = 10,
  LampAlarm = 11,
  Warning = 12,
  FirstTab = 20,  // 20 to 25: what the pages are chosen by
};

inline constexpr Box kTankWindow{37, 30, 22, 70};
inline constexpr Box kBowlWindow{16, 15, 98, 24};
inline constexpr Box kBottleInside{4, 28, 26, 53};
inline constexpr int kBottleWidth = 34;
inline constexpr int kBottleHeight = 84;
inline constexpr int kTabs = 6;
inline constexpr int kTabWidth = 84;
inline constexpr int kTabHeight = 46;

}  // namespace image

struct PanelImage {
  std::uint16_t id;
  std::string name;
  std::string data;  // a Windows bitmap
};

// Draws all of them for a display of this size; the same size gives the same bytes on every machine.
[[nodiscard]] std::vector<PanelImage> DrawImages(const Layout& layout);

}  // namespace sim
