#include "download/OsNumber.h"

namespace kv {

std::string VersionText(const OsNumber& number) {
  const std::string minor = std::to_string(number.version % 100);
  return std::to_string(number.version / 100) + "." + std::string(2 - minor.size(), '0') + minor;
}

std::string NumberText(const OsNumber& number) {
  return VersionText(number) + " (B" + (number.build < 10 ? "0" : "") + std::to_string(number.build) + ")";
}

}  // namespace kv
