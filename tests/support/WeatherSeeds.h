#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "base/Numbers.h"

namespace kv::test {

// Everything that a line may do, each now and then.
inline const std::vector<std::string> kRoughWeather = {
    "damage:rate=0.0005",     "noreply:p=0.02",      "late:ms=700,p=0.02",      "double:p=0.02",
    "cut:after=11,p=0.01",    "dribble:ms=2,p=0.02", "garbage:bytes=60,p=0.01", "echo:p=0.01",
    "wrongunit:p=0.01",       "busy:p=0.002",        "reset:p=0.003",           "lost:at=9,away=900,p=0.01",
    "lost:away=9000,p=0.004",
};

// What each request gets over by itself: no loss of the power, no connection that stays away, and never three requests
// in a row whose reply is of no use.
inline const std::vector<std::string> kFairWeather = {
    "echo:every=9",
    "noreply:every=10",
    "damage:chars=2,every=12",
    "cut:after=11,every=15",
    "garbage:bytes=60,every=18",
    "wrongunit:every=20",
    "late:ms=40,every=17",
    "double:every=7",
    "dribble:ms=2,every=5",
};

// How many seeds a test of random faults goes through: `usually`, or what KV_WEATHER_SEEDS says, which is 1000 before a
// release.
inline int WeatherSeeds(int usually) {
  const char* text = std::getenv("KV_WEATHER_SEEDS");
  return text != nullptr ? static_cast<int>(ParseInteger(text).value_or(usually)) : usually;
}

}  // namespace kv::test
