#include "KvCmDrv1/SettingsFile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "KvCmDrv1/LinkText.h"
#include "base/AnsiText.h"
#include "base/AtomicFile.h"
#include "base/KeepSetting.h"
#include "base/Numbers.h"
#include "base/ProfileFile.h"
#include "base/ProfileStrings.h"

namespace kv {
namespace {

constexpr std::string_view kFile = "KvCmDrv1.ini";
constexpr std::string_view kSection = "KvCmDrv1";

constexpr auto kTransports = std::to_array<std::string_view>({"sim", "tcp", "serial", "modem", "listen"});

// Texts of the file by key.
class Reader {
 public:
  Reader(std::filesystem::path file, std::vector<std::string>& complaints)
      : mFile(std::move(file)), mComplaints(complaints) {}

  // The value; nothing when the key is not there.
  [[nodiscard]] std::optional<std::string> Text(std::string_view key) const {
    constexpr std::string_view kMissing = "\x01";  // no value has this character: the file's own are kept from it
    const std::string value = ReadProfileString(mFile, kSection, key, kMissing);
    if (value == kMissing) return std::nullopt;
    return value;
  }

  void Read(std::string_view key, std::string& value) const {
    const std::optional<std::string> text = Text(key);
    if (!text) return;
    const bool isPlain = std::ranges::all_of(*text, [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
    if (text->size() > kLongestSettingText || !isPlain) {
      Complain(key, "printable characters, at most " + std::to_string(kLongestSettingText), value);
    } else {
      value = AnsiToUtf8(*text);
    }
  }

  // A whole number within `range`.
  template <typename T>
  void Read(std::string_view key, T& value, NumberRange range) const {
    const std::optional<std::string> text = Text(key);
    if (!text) return;
    const std::optional<std::int64_t> number = ParseInteger(*text);
    if (!number || !range.Holds(*number)) {
      Complain(key, "a number from " + std::to_string(range.lowest) + " to " + std::to_string(range.highest),
               std::to_string(value));
    } else {
      value = static_cast<T>(*number);
    }
  }

  // The same; an empty text is no number.
  void Read(std::string_view key, std::optional<std::uint32_t>& value, NumberRange range) const {
    const std::optional<std::string> text = Text(key);
    if (!text) return;
    value.reset();
    if (text->empty()) return;
    const std::optional<std::int64_t> number = ParseInteger(*text);
    if (number && range.Holds(*number)) {
      value = static_cast<std::uint32_t>(*number);
    } else {
      Complain(key,
               "nothing, or a number from " + std::to_string(range.lowest) + " to " + std::to_string(range.highest),
               "");
    }
  }

  void Read(std::string_view key, bool& value) const {
    int number = value ? 1 : 0;
    Read(key, number, {0, 1});
    value = number == 1;
  }

  void ReadMilliseconds(std::string_view key, Duration& value, NumberRange range) const {
    auto number = std::chrono::duration_cast<std::chrono::milliseconds>(value).count();
    Read(key, number, range);
    value = std::chrono::milliseconds(number);
  }

  void Complain(std::string_view key, std::string_view expected, std::string_view instead) const {
    mComplaints.push_back(std::string(kFile) + ", " + std::string(key) + ": expected " + std::string(expected) +
                          "; using " + (instead.empty() ? "nothing" : std::string(instead)));
  }

 private:
  std::filesystem::path mFile;
  std::vector<std::string>& mComplaints;
};

void ReadTransport(const Reader& reader, Transport& transport) {
  const std::optional<std::string> text = reader.Text("Transport");
  if (!text) return;
  const auto found = std::ranges::find(kTransports, *text);
  if (found == kTransports.end()) {
    reader.Complain("Transport", "sim, tcp, serial, modem or listen", kTransports[static_cast<std::size_t>(transport)]);
  } else {
    transport = static_cast<Transport>(found - kTransports.begin());
  }
}

void ReadFraming(const Reader& reader, SerialFraming& framing) {
  const std::optional<std::string> text = reader.Text("Framing");
  if (!text) return;
  if (const auto parsed = ParseFraming(*text)) {
    framing = *parsed;
  } else {
    reader.Complain("Framing", "a framing like 8N1", PrintFraming(framing));
  }
}

// Whoever takes the defaults for the settings of a file that another program holds reaches another controller than he
// means. Empty: it can be read, or is not there.
std::string WhyUnreadable(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error) && !error) return {};
  const auto content = ReadWholeFile(file, kLargestProfile);
  return content ? std::string() : content.error().Text();
}

std::string Milliseconds(Duration span) {
  return std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
}

}  // namespace

LoadedSettings LoadSettings(const std::filesystem::path& folder, const LinkSettings& defaults) {
  LoadedSettings loaded{.settings = defaults, .complaints = {}, .unreadable = WhyUnreadable(folder / kFile)};
  if (!loaded.unreadable.empty()) return loaded;
  LinkSettings& settings = loaded.settings;
  const Reader reader(folder / kFile, loaded.complaints);
  ReadTransport(reader, settings.transport);
  reader.Read("Model", settings.model);
  reader.Read("Host", settings.host);
  reader.Read("TcpPort", settings.tcpPort, kTcpPorts);
  reader.Read("SerialPort", settings.serialPort);
  reader.Read("BaudRate", settings.baudRate, kBaudRates);
  ReadFraming(reader, settings.framing);
  reader.Read("ModemInit", settings.modem.init);
  reader.Read("ModemNumber", settings.modem.number);
  reader.Read("ModemPulse", settings.modem.isPulse);
  reader.ReadMilliseconds("ModemDialTimeOut", settings.modem.dialTimeOut,
                          {kDialTimeOuts.lowest * 1000, kDialTimeOuts.highest * 1000});
  reader.Read("ModemRedials", settings.modem.redials, kRedials);
  reader.Read("UnitID", settings.unit, kUnitIds);
  reader.Read("SerialNumber", settings.serialNumber, kSerialNumbers);
  reader.ReadMilliseconds("TimeOut", settings.timeOut, kTimeOuts);
  reader.Read("Tries", settings.tries, kTries);
  reader.Read("Reconnect", settings.reconnects);
  return loaded;
}

std::expected<void, std::string> SaveSettings(const std::filesystem::path& folder, const LinkSettings& settings) {
  const struct {
    std::string_view key;
    std::string value;
  } values[] = {
      {"Transport", std::string(kTransports[static_cast<std::size_t>(settings.transport)])},
      {"Model", settings.model},
      {"Host", settings.host},
      {"TcpPort", std::to_string(settings.tcpPort)},
      {"SerialPort", settings.serialPort},
      {"BaudRate", std::to_string(settings.baudRate)},
      {"Framing", PrintFraming(settings.framing)},
      {"ModemInit", settings.modem.init},
      {"ModemNumber", settings.modem.number},
      {"ModemPulse", settings.modem.isPulse ? "1" : "0"},
      {"ModemDialTimeOut", Milliseconds(settings.modem.dialTimeOut)},
      {"ModemRedials", std::to_string(settings.modem.redials)},
      {"UnitID", std::to_string(settings.unit)},
      {"SerialNumber", settings.serialNumber ? std::to_string(*settings.serialNumber) : ""},
      {"TimeOut", Milliseconds(settings.timeOut)},
      {"Tries", std::to_string(settings.tries)},
      {"Reconnect", settings.reconnects ? "1" : "0"},
  };
  for (const auto& [key, value] : values) {
    if (auto kept = KeepSetting(folder / kFile, kSection, key, value); !kept) return kept;
  }
  return {};
}

}  // namespace kv
