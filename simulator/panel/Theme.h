#pragma once

#include "simulator/panel/ScreenRecords.h"

namespace sim::theme {

// The colours of the demonstration plant. Colour means something: green runs, amber wants attention, red has stopped.
inline constexpr Colour kGround = Rgb(24, 36, 48);
inline constexpr Colour kHeader = Rgb(16, 24, 32);
inline constexpr Colour kCard = Rgb(40, 56, 72);
inline constexpr Colour kChosen = Rgb(56, 84, 112);
inline constexpr Colour kRaised = Rgb(96, 124, 148);
inline constexpr Colour kSunk = Rgb(8, 16, 24);
inline constexpr Colour kText = Rgb(236, 244, 248);
inline constexpr Colour kMuted = Rgb(160, 180, 196);
inline constexpr Colour kAccent = Rgb(56, 176, 232);
inline constexpr Colour kGreen = Rgb(40, 160, 88);
inline constexpr Colour kGreenDark = Rgb(24, 92, 56);
inline constexpr Colour kRed = Rgb(208, 64, 64);
inline constexpr Colour kRedDark = Rgb(120, 44, 48);
inline constexpr Colour kAmber = Rgb(240, 168, 48);
inline constexpr Colour kGrey = Rgb(88, 104, 120);
inline constexpr Colour kProduct = Rgb(232, 128, 40);  // what is filled
inline constexpr Colour kPipe = Rgb(128, 144, 160);
inline constexpr Colour kGlass = Rgb(32, 48, 64);

}  // namespace sim::theme
