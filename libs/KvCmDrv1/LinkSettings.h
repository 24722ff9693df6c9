#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/Time.h"
#include "link/LinkLimits.h"

namespace kv {

enum class Transport { Simulated, Tcp, Serial, Modem, Listen };

enum class Parity { None, Even, Odd };

// How a serial line frames a byte. "8N1" is the controllers' own; 7 data bits cannot carry block messages.
struct SerialFraming {
  int dataBits = 8;  // 7 or 8
  Parity parity = Parity::None;
  int stopBits = 1;  // 1 or 2

  bool operator==(const SerialFraming&) const = default;
};

struct ModemSettings {
  std::string init;                                 // sent after the reset; empty: nothing
  std::string number;                               // digits and the marks a modem understands ("0,12345")
  bool isPulse = false;                             // pulse dialling
  Duration dialTimeOut = std::chrono::seconds(60);  // how long the other side may take to answer
  int redials = 3;                                  // how often in a row a watch dials a lost call again by itself

  bool operator==(const ModemSettings&) const = default;
};

// What the numbers of the settings may be, beside those of every link (LinkLimits.h).
inline constexpr int kLowestBaudRate = 300;
inline constexpr int kHighestBaudRate = 921600;
inline constexpr NumberRange kTcpPorts{1, 65535};
inline constexpr NumberRange kBaudRates{kLowestBaudRate, kHighestBaudRate};  // bits a second
inline constexpr NumberRange kDialTimeOuts{5, 300};                          // seconds
inline constexpr NumberRange kRedials{0, 99};
inline constexpr NumberRange kSerialNumbers{0, 0xFFFFFFFF};
inline constexpr std::size_t kLongestSettingText = 200;  // of the texts, in bytes

inline constexpr std::uint16_t kDefaultTcpPort = 20300;
inline constexpr int kDefaultBaudRate = 115200;

// Everything that describes one link to a controller. What a transport does not use keeps its default or last value, so
// that changing the transport in the dialog there and back loses nothing.
struct LinkSettings {
  Transport transport = Transport::Simulated;

  std::string model = "K220-22-R1";         // of the simulated controller
  std::string host = "127.0.0.1";           // name or address
  std::uint16_t tcpPort = kDefaultTcpPort;  // to connect to, or to listen on
  std::string serialPort;                   // "COM3", "/dev/ttyS3": also the modem's
  int baudRate = kDefaultBaudRate;
  SerialFraming framing;
  ModemSettings modem;

  std::uint8_t unit = 1;
  std::optional<std::uint32_t> serialNumber;  // of the controller that is meant; nothing: whoever answers first
  Duration timeOut = std::chrono::milliseconds(kUsualTimeOut);  // longest time for a reply
  int tries = kUsualTries;  // how often a request is sent before it counts as unanswered
  bool reconnects = true;   // reopen a lost link by itself

  bool operator==(const LinkSettings&) const = default;
};

}  // namespace kv
