#include "KvTele2/ControllerFacts.h"

#include <utility>

#include "base/AnsiText.h"
#include "link/OsVersion.h"
#include "link/StateText.h"

namespace kv {
namespace {

// Milliseconds with two decimals: a fast link answers in a fraction of one.
std::string Milliseconds(Duration span) {
  if (span <= Duration::zero()) return "";
  const std::string hundredths = std::to_string((span.count() + 5) / 10 % 100);
  return std::to_string((span.count() + 5) / 1000) + "." + (hundredths.size() < 2 ? "0" : "") + hundredths + " ms";
}

// "model K220-22-R1, O/S 2.90, ...", without what is not known.
std::string ListOf(const ControllerFacts& facts) {
  const std::pair<const char*, const std::string*> rows[] = {
      {"model ", &facts.model},  {"hardware code ", &facts.hardwareCode},
      {"O/S ", &facts.os},       {"build ", &facts.build},
      {"unit id ", &facts.unit}, {"serial number ", &facts.serialNumber},
      {"state ", &facts.state},  {"project ", &facts.project},
  };
  std::string list;
  for (const auto& [name, text] : rows) {
    if (!text->empty()) list += (list.empty() ? "" : ", ") + (name + *text);
  }
  return list;
}

}  // namespace

ControllerFacts ControllerFactsOf(const VersionInfo& version, int unit) {
  ControllerFacts facts;
  facts.model = AnsiToUtf8(version.model);
  facts.hardwareCode = AnsiToUtf8(version.hardwareCode);
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

ControllerFacts ControllerFactsOf(const RefusedController& refused, int unit) {
  ControllerFacts facts = ControllerFactsOf(refused.version, unit);
  if (refused.info) AddInfo(facts, *refused.info);
  return facts;
}

std::string RefusalText(const std::string& text, const ControllerFacts& facts) {
  std::string lines = text;
  std::erase(lines, '\r');
  return lines + "\nThe controller: " + ListOf(facts) + ".";
}

LinkFacts LinkFactsOf(const LinkQuality& quality) {
  return {.roundTrip = Milliseconds(quality.roundTrip),
          .exchanges = std::to_string(quality.exchanges),
          .repeats = std::to_string(quality.repeats),
          .errors = std::to_string(quality.errors)};
}

}  // namespace kv
