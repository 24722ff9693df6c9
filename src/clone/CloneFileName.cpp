#include "clone/CloneFileName.h"

#include <cctype>

#include "base/DateText.h"

namespace kv {

std::string CloneFileName(std::string_view model, std::string_view serialNumber, std::chrono::local_seconds now) {
  std::string name(model);
  if (!serialNumber.empty()) name.append("-").append(serialNumber);
  for (char& each : name) {
    if (!std::isalnum(static_cast<unsigned char>(each))) each = '-';
  }
  std::string time = TimeOfDayText(now);
  std::erase(time, ':');
  return name + (name.empty() ? "" : "-") + DateText(now) + "-" + time + ".kdf";
}

}  // namespace kv
