#pragma once

#include <cstdlib>

#include "base/Numbers.h"

namespace kv::test {

// How many seeds a test of random faults goes through: `usually`, or what KV_WEATHER_SEEDS says, which is 1000 before a
// release.
inline int WeatherSeeds(int usually) {
  const char* text = std::getenv("KV_WEATHER_SEEDS");
  return text != nullptr ? static_cast<int>(ParseInteger(text).value_or(usually)) : usually;
}

}  // namespace kv::test
