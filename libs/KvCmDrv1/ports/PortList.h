#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kv {

// A serial port of this machine.
struct SerialPortInfo {
  std::string name;         // "COM3", "ttyUSB0"
  std::string path;         // what a link is opened with: "COM3", "/dev/ttyUSB0"
  std::string description;  // "USB-Serial Controller (Prolific)"; may be empty
  std::string
      stablePath;  // names the adapter wherever it is plugged in ("/dev/serial/by-id/..."); empty: there is none

  bool operator==(const SerialPortInfo&) const = default;
};

// The serial ports that have hardware, in the order of their names, numbers counting as numbers.
[[nodiscard]] std::vector<SerialPortInfo> ListSerialPorts();

// The same from a copy of the system's folders below `root` ("/" for the real ones). Empty on Windows.
[[nodiscard]] std::vector<SerialPortInfo> ListSerialPortsBelow(const std::filesystem::path& root);

}  // namespace kv
