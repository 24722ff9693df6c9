#include "KvCmDrv1/ports/FramingText.h"

#include "base/Numbers.h"

namespace kv {
namespace {

constexpr std::string_view kParityLetters = "NEO";  // in the order of Parity

char ToUpper(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool StartsWithLetters(std::string_view text, std::string_view upperCase) {
  if (text.size() < upperCase.size()) return false;
  for (std::size_t i = 0; i < upperCase.size(); ++i) {
    if (ToUpper(text[i]) != upperCase[i]) return false;
  }
  return true;
}

}  // namespace

std::string FramingText(const SerialFraming& framing) {
  return std::to_string(framing.dataBits) + kParityLetters[static_cast<std::size_t>(framing.parity)] +
         std::to_string(framing.stopBits);
}

std::optional<SerialFraming> ParseFraming(std::string_view text) {
  if (text.size() != 3) return std::nullopt;
  const auto parity = kParityLetters.find(ToUpper(text[1]));
  const bool isGood =
      (text[0] == '7' || text[0] == '8') && (text[2] == '1' || text[2] == '2') && parity != std::string_view::npos;
  if (!isGood) return std::nullopt;
  return SerialFraming{text[0] - '0', static_cast<Parity>(parity), text[2] - '0'};
}

int BitsOnWire(const SerialFraming& framing) {
  return 1 + framing.dataBits + (framing.parity == Parity::None ? 0 : 1) + framing.stopBits;
}

int SerialPortNumber(std::string_view port) {
  const std::string_view name = port.substr(port.find_last_of("/\\") + 1);
  const std::size_t letters = StartsWithLetters(name, "COM") ? 3 : name.starts_with("ttyS") ? 4 : name.size();
  const auto number = ParseInteger(name.substr(letters));
  return number && *number > 0 && *number <= 65535 ? static_cast<int>(*number) : 0;
}

}  // namespace kv
