#include "KvCmDrv1/ports/PortErrors.h"

#include <array>
#include <asio/error.hpp>

#include "KvCmDrv1/ports/PortList.h"
#include "base/FilePlatform.h"

namespace kv {
namespace {

const char* const kCheckSettings = "check host and TCP port in the communication settings";

// "%" stands for the endpoint.
struct ConnectText {
  std::error_code code;
  const char* happened;
  const char* cause;
  const char* cure;
};

const auto& ConnectTexts() {
  static const std::array<ConnectText, 8> kTexts{{
      {asio::error::connection_refused, "% refused the connection",
       "nothing listens on that TCP port there, or another program holds the controller's only connection",
       "check the TCP port, and close other programs that talk to this controller"},
      {asio::error::timed_out, "% did not answer in time",
       "the controller is switched off, has another address, or a firewall drops the connection", kCheckSettings},
      {asio::error::host_unreachable, "% cannot be reached",
       "no device with that address answers in its network, or the network cable is unplugged",
       "check cables and power, and the host in the communication settings"},
      {asio::error::network_unreachable, "% cannot be reached", "this computer has no way into that network",
       "check the network connection of this computer"},
      {asio::error::host_not_found, "the host of % is not known", "the name is misspelt or not in the name service",
       "check the host in the communication settings, or give its address in numbers"},
      {asio::error::host_not_found_try_again, "the host of % could not be looked up", "the name service did not answer",
       "check the network connection, or give the address in numbers"},
      {asio::error::operation_aborted, "connecting to % was stopped", "it was asked to end", "connect again"},
      {asio::error::no_permission, "% may not be connected to",
       "the address is a broadcast address, or a firewall of this computer forbids it", kCheckSettings},
  }};
  return kTexts;
}

std::string Fill(std::string text, const std::string& name) {
  const auto place = text.find('%');
  if (place != std::string::npos) text.replace(place, 1, name);
  return text;
}

std::string PortsOfThisMachine() {
  std::string names;
  for (const auto& port : ListSerialPorts()) names += (names.empty() ? "" : ", ") + port.path;
  return names.empty() ? "this computer has no serial port" : "this computer has " + names;
}

struct SerialText {
  const char* happened;
  const char* cause;
  const char* cure;
};

constexpr std::array<SerialText, 10> kSerialTexts{{
    // in the order of SerialFault; "%" stands for the port
    {"there is no serial port %", "the adapter is not plugged in, or the port has another name", ""},
    {"no permission to use %", "", ""},
    {"% is in use", "another program, or another window of this one, has the port open",
     "close the other program, then try again"},
    {"% is in use", "a program of another user has the port open, or one that was killed has left it locked",
     "close the other program; when there is none, unplug the adapter and plug it in again, or for a pseudo terminal "
     "start the program at its other end anew"},
    {"% is locked, and no program has it open", "a program that was killed has left it locked",
     "unplug the adapter and plug it in again, or for a pseudo terminal start the program at its other end anew"},
    {"% is not a serial port", "the name is that of a file or of another kind of device",
     "choose a serial port in the communication settings"},
    {"% has no serial port hardware behind it", "the system lists the port but the computer does not have it",
     "choose another serial port in the communication settings"},
    {"% does not work at this speed", "the adapter or its driver does not know this baud rate",
     "choose another baud rate in the communication settings"},
    {"% does not work with this framing", "the adapter or its driver does not know these data, parity and stop bits",
     "choose 8N1 in the communication settings"},
    {"% cannot be opened", "", "unplug the adapter and plug it in again, then try again"},
}};

}  // namespace

std::string EndpointText(const std::string& host, std::uint16_t port) {
  const bool isV6 = host.find(':') != std::string::npos;
  return (isV6 ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

PortError NoHostError() {
  return {"no host is set", "the session's settings leave it empty",
          "enter the controller's name or address in the communication settings"};
}

PortError ConnectError(const std::string& endpoint, std::error_code code) {
  for (const auto& text : ConnectTexts()) {
    if (text.code == code) return {Fill(text.happened, endpoint), text.cause, text.cure};
  }
  return {"connecting to " + endpoint + " failed", SystemMessage(code), kCheckSettings};
}

PortError ConnectionLossError(const std::string& endpoint, std::error_code code) {
  const std::string cure = "check the controller and its network, then connect again";
  if (!code) {
    return {endpoint + " closed the connection", "the controller restarted, was switched off, or lets another in",
            cure};
  }
  if (code == std::errc::connection_reset || code == std::errc::broken_pipe) {
    return {endpoint + " broke the connection off", "the controller restarted or lost power, or its network did", cure};
  }
  return {"the connection to " + endpoint + " broke", SystemMessage(code), cure};
}

PortError SerialOpenError(const std::string& port, SerialFault fault, std::error_code code, const std::string& owner) {
  const auto& text = kSerialTexts[static_cast<std::size_t>(fault)];
  PortError error{Fill(text.happened, port), text.cause, text.cure};
  if (fault == SerialFault::Missing) {
    error.cure = "plug the adapter in, or choose another port: " + PortsOfThisMachine();
  } else if (fault == SerialFault::NoPermission && owner.empty()) {
    error.cause = "this user may not use the device";
    error.cure = "have the administrator give this user access to it";
  } else if (fault == SerialFault::NoPermission) {
    error.cause = "the device belongs to the group \"" + owner + "\", and this user is not in it";
    error.cure = "have the administrator add this user to the group \"" + owner + "\", then log on again";
  } else if (fault == SerialFault::InUse && !owner.empty()) {
    error.cause = owner + " has the port open";
    error.cure = "close it, then try again";
  } else if (fault == SerialFault::Other) {
    error.cause = SystemMessage(code);
  }
  return error;
}

PortError SerialLossError(const std::string& port, std::error_code code) {
  return {port + " is gone",
          code ? "the adapter was unplugged (" + SystemMessage(code) + ")" : "the adapter was unplugged",
          "plug it in again, then connect again"};
}

}  // namespace kv
