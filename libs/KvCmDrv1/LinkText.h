#pragma once

#include <expected>
#include <string>
#include <string_view>

#include "KvCmDrv1/LinkSettings.h"

namespace kv {

// A link as one text, for the command line and for saved link parameters:
//
//   sim:MODEL | tcp:HOST:PORT | serial:PORT[,BAUD[,8N1]] | modem:PORT,NUMBER[,BAUD[,INIT]] | listen:PORT
//
// tcp: without a port takes 20300; an IPv6 host stands in brackets ("tcp:[::1]:20300"). A port name, a number or an
// init text with a comma stands in double quotes, a quote in it doubled (modem:COM3,"0,123456",9600).

// `base` with the link that `text` names; what the text leaves open stays as in `base`. The error says what was
// expected.
[[nodiscard]] std::expected<LinkSettings, std::string> ParseLink(std::string_view text, const LinkSettings& base = {});
[[nodiscard]] std::string PrintLink(const LinkSettings& settings);

// "8N1".
[[nodiscard]] std::expected<SerialFraming, std::string> ParseFraming(std::string_view text);
[[nodiscard]] std::string PrintFraming(const SerialFraming& framing);

// Whether it has a speed. Other links go as fast as they go, whatever speed a tool asks for.
[[nodiscard]] bool HasRate(const LinkSettings& settings);

// For people: "COM3, 115200 8N1", "192.168.1.20:20300", "Simulated K220-22-R1".
[[nodiscard]] std::string DescribeLine(const LinkSettings& settings);
// The same with ", unit 1" behind it, where there are units.
[[nodiscard]] std::string DescribeLink(const LinkSettings& settings);

}  // namespace kv
