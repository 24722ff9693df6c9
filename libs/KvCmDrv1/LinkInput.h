#pragma once

#include <string>
#include <vector>

#include "KvCmDrv1/LinkSettings.h"

namespace kv {

// The link settings as a user fills them in, field by field, and their check.

enum class LinkField {
  Model,
  Host,
  TcpPort,
  SerialPort,
  BaudRate,
  Framing,
  ModemInit,
  ModemNumber,
  ModemPulse,
  DialTimeOut,
  Redials,
  Unit,
  SerialNumber,
  TimeOut,
  Tries,
  Reconnects,
};

// Whether a link of that kind depends on the field.
[[nodiscard]] bool UsesField(Transport transport, LinkField field);

// Numbers are texts in the units of the ranges: milliseconds for the time-out, seconds for the time-out of dialling.
struct LinkInput {
  Transport transport = Transport::Simulated;
  std::string model;
  std::string host;
  std::string tcpPort;
  std::string serialPort;
  std::string baudRate;
  std::string framing;  // "8N1"
  std::string modemInit;
  std::string modemNumber;
  bool isPulse = false;
  std::string dialTimeOut;
  std::string redials;
  std::string unit;
  std::string serialNumber;  // empty: any
  std::string timeOut;
  std::string tries;
  bool reconnects = true;

  bool operator==(const LinkInput&) const = default;
};

[[nodiscard]] LinkInput InputOf(const LinkSettings& settings);

// A field that cannot be used as it is, and what it may be: "TCP port: a number from 1 to 65535".
struct LinkFault {
  LinkField field;
  std::string text;
};

struct CheckedInput {
  LinkSettings settings;
  std::vector<LinkFault> faults;  // of the fields that the transport uses, in their order
};

// Blanks around a text do not count. A faulty field leaves its setting as it is in `before`.
[[nodiscard]] CheckedInput CheckInput(const LinkInput& input, const LinkSettings& before);

}  // namespace kv
