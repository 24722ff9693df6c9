#pragma once

#include <string>

namespace kv {

// Identification record: four texts as the controller reports them, in the order in which tools number them.
struct VersionInfo {
  std::string model{};         // for example "K670-67-T40 / K390-29-T40", or a boot text such as "CLR BOOT"
  std::string hardwareCode{};  // two digits; tells the model while the controller runs its boot loader
  std::string osVersion{};     // "4.60", or on colour controllers fields joined by ";"
  std::string osBuild{};       // its last two characters, any ";" removed, are the build number

  bool operator==(const VersionInfo&) const = default;
};

}  // namespace kv
