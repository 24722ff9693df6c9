#include "KvCmDrv1/LinkText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/Numbers.h"

namespace kv {
namespace {

using Parsed = std::expected<LinkSettings, std::string>;

std::unexpected<std::string> Expected(std::string_view what, std::string_view found) {
  return std::unexpected("\"" + std::string(found) + "\": expected " + std::string(what));
}

std::optional<int> NumberWithin(std::string_view text, std::int64_t lowest, std::int64_t highest) {
  const std::optional<std::int64_t> number = ParseInteger(text);
  if (!number || *number < lowest || *number > highest) return std::nullopt;
  return static_cast<int>(*number);
}

// One field of a link text. What stands in double quotes may hold commas; a quote in it is doubled.
struct Field {
  std::string text;
  bool isQuoted = false;
};

constexpr char kQuote = '"';

// Takes a quoted field from the front of `rest`. False when its end is missing, or something stands behind it.
bool TakeQuoted(std::string_view& rest, Field& field) {
  field.isQuoted = true;
  for (rest.remove_prefix(1); !rest.empty(); rest.remove_prefix(1)) {
    if (rest.front() == kQuote) {
      rest.remove_prefix(1);
      if (rest.empty() || rest.front() == ',') return true;
      if (rest.front() != kQuote) return false;
    }
    field.text += rest.front();
  }
  return false;
}

std::expected<std::vector<Field>, std::string> SplitAtCommas(std::string_view text) {
  std::vector<Field> fields;
  std::string_view rest = text;
  while (true) {
    Field& field = fields.emplace_back();
    if (rest.starts_with(kQuote)) {
      if (!TakeQuoted(rest, field)) return Expected("a quote at the end of the field", text);
    } else {
      field.text = rest.substr(0, rest.find(','));
      rest.remove_prefix(field.text.size());
    }
    if (rest.empty()) return fields;
    rest.remove_prefix(1);
  }
}

std::string Quoted(std::string_view text) {
  std::string quoted(1, kQuote);
  for (const char c : text) quoted.append(c == kQuote ? 2 : 1, c);
  return quoted + kQuote;
}

// A name that would be taken for something else otherwise stands in quotes.
std::string PortText(const std::string& name) {
  return name.find(',') == std::string::npos && !name.starts_with(kQuote) ? name : Quoted(name);
}

bool SetTcpPort(std::string_view text, LinkSettings& settings) {
  const std::optional<int> port = NumberWithin(text, 1, 65535);
  if (port) settings.tcpPort = static_cast<std::uint16_t>(*port);
  return port.has_value();
}

bool SetBaudRate(std::string_view text, LinkSettings& settings) {
  const std::optional<int> rate = NumberWithin(text, kLowestBaudRate, kHighestBaudRate);
  if (rate) settings.baudRate = *rate;
  return rate.has_value();
}

constexpr std::string_view kSerialText =
    "PORT[,BAUD[,8N1]], as in serial:COM3,115200; a name with a comma stands in double quotes";
constexpr std::string_view kModemText =
    "PORT,NUMBER[,BAUD[,INIT]], as in modem:COM3,0123456 or modem:COM3,0123456,9600,ATM0; what holds a comma stands in "
    "double quotes, as in modem:COM3,\"0,123456\"";
constexpr std::string_view kInitText =
    "the init text of the modem: printable characters, which begin with AT unless they are quoted";

Parsed ParseSimulated(std::string_view rest, LinkSettings settings) {
  if (rest.empty()) return Expected("a model behind sim:, for example sim:K220-22-R1", rest);
  settings.transport = Transport::Simulated;
  settings.model = rest;
  return settings;
}

Parsed ParseTcp(std::string_view rest, LinkSettings settings) {
  settings.transport = Transport::Tcp;
  settings.tcpPort = kDefaultTcpPort;
  std::size_t hostEnd = rest.rfind(':');
  if (rest.starts_with('[')) {
    const std::size_t bracket = rest.rfind(']');
    if (bracket == std::string_view::npos) return Expected("a \"]\" behind the address", rest);
    settings.host = rest.substr(1, bracket - 1);
    rest.remove_prefix(bracket + 1);
    hostEnd = 0;
    if (!rest.empty() && rest.front() != ':') return Expected("\":\" and a port behind the address", rest);
  } else {
    settings.host = rest.substr(0, hostEnd);
    if (settings.host.find(':') != std::string::npos) return Expected("brackets around an IPv6 address", rest);
  }
  if (settings.host.empty()) return Expected("a host name or address, as in tcp:192.168.1.20:20300", rest);
  const bool hasPort = !rest.empty() && hostEnd != std::string_view::npos;
  if (hasPort && !SetTcpPort(rest.substr(hostEnd + 1), settings))
    return Expected("a port of " + kTcpPorts.Text(), rest.substr(hostEnd + 1));
  return settings;
}

Parsed ParseSerial(std::string_view rest, LinkSettings settings) {
  const auto fields = SplitAtCommas(rest);
  if (!fields) return std::unexpected(fields.error());
  const std::vector<Field>& parts = *fields;
  settings.transport = Transport::Serial;
  settings.serialPort = parts[0].text;
  if (settings.serialPort.empty() || parts.size() > 3) return Expected(kSerialText, rest);
  if (parts.size() > 1 && !SetBaudRate(parts[1].text, settings))
    return Expected("a speed of " + kBaudRates.Text() + " baud", parts[1].text);
  if (parts.size() > 2) {
    const auto framing = ParseFraming(parts[2].text);
    if (!framing) return std::unexpected(framing.error());
    settings.framing = *framing;
  }
  return settings;
}

// Whether a number that is not quoted may be cut where its field ends: digits behind a comma pass for a speed too.
bool MayBeCut(const Field& number, const LinkSettings& settings) {
  constexpr std::size_t kShortest = 3;  // shorter ones only lead to an outside line
  constexpr auto kUsualRates =
      std::to_array<int>({300, 600, 1200, 2400, 4800, 9600, 14400, 19200, 28800, 33600, 38400, 57600, 115200, 230400});
  if (number.isQuoted) return false;
  return number.text.size() < kShortest || std::ranges::find(kUsualRates, settings.baudRate) == kUsualRates.end();
}

// What does not begin as a modem's command does may be the rest of a number that is not quoted.
bool SetInit(const Field& field, LinkSettings& settings) {
  const std::string& text = field.text;
  const bool isPrintable = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
  const bool isCommand = text.starts_with("AT") || text.starts_with("at");
  if (!isPrintable || (!field.isQuoted && !isCommand)) return false;
  settings.modem.init = text;
  return true;
}

Parsed ParseModem(std::string_view rest, LinkSettings settings) {
  const auto fields = SplitAtCommas(rest);
  if (!fields) return std::unexpected(fields.error());
  const std::vector<Field>& parts = *fields;
  settings.transport = Transport::Modem;
  if (parts.size() < 2 || parts.size() > 4 || parts[0].text.empty() || parts[1].text.empty()) {
    return Expected(kModemText, rest);
  }
  settings.serialPort = parts[0].text;
  settings.modem.number = parts[1].text;
  if (parts.size() == 2) return settings;
  if (!SetBaudRate(parts[2].text, settings))
    return Expected("a speed of " + kBaudRates.Text() + " baud", parts[2].text);
  if (MayBeCut(parts[1], settings)) return Expected(kModemText, rest);
  if (parts.size() == 4 && !SetInit(parts[3], settings)) return Expected(kInitText, parts[3].text);
  return settings;
}

Parsed ParseListen(std::string_view rest, LinkSettings settings) {
  settings.transport = Transport::Listen;
  if (!SetTcpPort(rest, settings)) return Expected("a port of " + kTcpPorts.Text(), rest);
  return settings;
}

struct Kind {
  std::string_view prefix;
  Parsed (*parse)(std::string_view rest, LinkSettings settings);
};

constexpr auto kKinds = std::to_array<Kind>({
    {"sim:", ParseSimulated},
    {"tcp:", ParseTcp},
    {"serial:", ParseSerial},
    {"modem:", ParseModem},
    {"listen:", ParseListen},
});

std::string Endpoint(const LinkSettings& settings) {
  const bool needsBrackets = settings.host.find_first_of(":[") != std::string::npos;
  return (needsBrackets ? "[" + settings.host + "]" : settings.host) + ":" + std::to_string(settings.tcpPort);
}

constexpr std::string_view kParityLetters = "NEO";

}  // namespace

std::expected<LinkSettings, std::string> ParseLink(std::string_view text, const LinkSettings& base) {
  for (const Kind& kind : kKinds) {
    if (text.starts_with(kind.prefix)) return kind.parse(text.substr(kind.prefix.size()), base);
  }
  return Expected("sim:MODEL, tcp:HOST:PORT, serial:PORT[,BAUD[,8N1]], modem:PORT,NUMBER[,BAUD[,INIT]] or listen:PORT",
                  text);
}

std::string PrintLink(const LinkSettings& settings) {
  const std::string rate = "," + std::to_string(settings.baudRate);
  switch (settings.transport) {
    case Transport::Simulated:
      return "sim:" + settings.model;
    case Transport::Tcp:
      return "tcp:" + Endpoint(settings);
    case Transport::Serial:
      return "serial:" + PortText(settings.serialPort) + rate + "," + PrintFraming(settings.framing);
    case Transport::Modem:
      return "modem:" + PortText(settings.serialPort) + "," + Quoted(settings.modem.number) + rate + "," +
             Quoted(settings.modem.init);
    case Transport::Listen:
      return "listen:" + std::to_string(settings.tcpPort);
  }
  return {};
}

std::expected<SerialFraming, std::string> ParseFraming(std::string_view text) {
  SerialFraming framing;
  const std::size_t parity = text.size() == 3 ? kParityLetters.find(text[1]) : std::string_view::npos;
  const bool isGood =
      parity != std::string_view::npos && (text[0] == '7' || text[0] == '8') && (text[2] == '1' || text[2] == '2');
  if (!isGood) return Expected("data bits 7 or 8, parity N, E or O, stop bits 1 or 2, as in 8N1", text);
  framing.dataBits = text[0] - '0';
  framing.parity = static_cast<Parity>(parity);
  framing.stopBits = text[2] - '0';
  return framing;
}

std::string PrintFraming(const SerialFraming& framing) {
  return std::to_string(framing.dataBits) + kParityLetters[static_cast<std::size_t>(framing.parity)] +
         std::to_string(framing.stopBits);
}

bool HasRate(const LinkSettings& settings) {
  return settings.transport == Transport::Serial || settings.transport == Transport::Modem;
}

std::string DescribeLine(const LinkSettings& settings) {
  const std::string serial =
      settings.serialPort + ", " + std::to_string(settings.baudRate) + " " + PrintFraming(settings.framing);
  switch (settings.transport) {
    case Transport::Simulated:
      return "Simulated " + settings.model;
    case Transport::Tcp:
      return Endpoint(settings);
    case Transport::Serial:
      return serial;
    case Transport::Modem:
      return serial + ", modem " + settings.modem.number;
    case Transport::Listen:
      return "port " + std::to_string(settings.tcpPort) + " (listening)";
  }
  return {};
}

std::string DescribeLink(const LinkSettings& settings) {
  if (settings.transport == Transport::Simulated) return DescribeLine(settings);
  return DescribeLine(settings) + ", unit " + std::to_string(settings.unit);
}

}  // namespace kv
