#include "KvTele2/ControllerFacts.h"

#include "base/AnsiText.h"
#include "link/OsVersion.h"

namespace kv {
namespace {

std::string StateText(char state) {
  switch (state) {
    case 'R':
      return "Running";
    case 'S':
      return "Stopped";
    case 'B':
      return "Boot loader";
    case 'L':
      return "Loading";
    default:
      return "Unknown";
  }
}

// Milliseconds with two decimals: a fast link answers in a fraction of one.
std::string Milliseconds(Duration span) {
  if (span <= Duration::zero()) return "";
  const std::string hundredths = std::to_string((span.count() + 5) / 10 % 100);
  return std::to_string((span.count() + 5) / 1000) + "." + (hundredths.size() < 2 ? "0" : "") + hundredths + " ms";
}

}  // namespace

ControllerFacts FactsOf(const VersionInfo& version, int unit) {
  ControllerFacts facts;
  facts.model = AnsiToUtf8(version.model);
  facts.os = OsVersionText(version);
  facts.build = OsBuildText(version);
  facts.unit = std::to_string(unit);
  return facts;
}

void AddInfo(ControllerFacts& facts, const Channel::ControllerInfo& info) {
  facts.state = StateText(info.state);
  facts.project = AnsiToUtf8(info.projectName);
  facts.serialNumber = std::to_string(info.serialNumber);
}

LinkFacts FactsOf(const LinkQuality& quality) {
  return {.roundTrip = Milliseconds(quality.roundTrip),
          .exchanges = std::to_string(quality.exchanges),
          .repeats = std::to_string(quality.repeats),
          .errors = std::to_string(quality.errors)};
}

}  // namespace kv
