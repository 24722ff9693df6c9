#include "KvCmDrv1/LinkInput.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "KvCmDrv1/LinkText.h"
#include "base/Numbers.h"

namespace kv {
namespace {

using enum LinkField;

// Which fields the kinds of link depend on, in the order of Transport: simulated, TCP, serial, modem, listening.
struct FieldUse {
  LinkField field;
  std::array<bool, 5> byTransport;
};
constexpr bool o = false, X = true;
// clang-format off
constexpr auto kUses = std::to_array<FieldUse>({
    //            Sim Tcp Ser Mod Lis
    {Model,       {X,  o,  o,  o,  o}},
    {Host,        {o,  X,  o,  o,  o}},
    {TcpPort,     {o,  X,  o,  o,  X}},
    {SerialPort,  {o,  o,  X,  X,  o}},
    {BaudRate,    {o,  o,  X,  X,  o}},
    {Framing,     {o,  o,  X,  X,  o}},
    {ModemInit,   {o,  o,  o,  X,  o}},
    {ModemNumber, {o,  o,  o,  X,  o}},
    {ModemPulse,  {o,  o,  o,  X,  o}},
    {DialTimeOut, {o,  o,  o,  X,  o}},
    {Redials,     {o,  o,  o,  X,  o}},
    {Unit,        {X,  X,  X,  X,  X}},
    {SerialNumber,{X,  X,  X,  X,  X}},
    {TimeOut,     {X,  X,  X,  X,  X}},
    {Tries,       {X,  X,  X,  X,  X}},
    {Reconnects,  {o,  X,  X,  o,  X}},
});
// clang-format on

// Digits, and what modems understand between them: tones, pauses, waits, and the marks that people write.
constexpr std::string_view kDialMarks = "0123456789*#ABCDTPWtpw,@!-+() .";

std::string_view WithoutBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

bool IsPlain(std::string_view text) {
  return text.size() <= kLongestSettingText &&
         std::ranges::none_of(text, [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

class Checker {
 public:
  Checker(const LinkInput& input, const LinkSettings& before) : mResult{before, {}} {
    mResult.settings.transport = input.transport;
    mResult.settings.modem.isPulse = input.isPulse;
    mResult.settings.reconnects = input.reconnects;
  }

  // False when it cannot be used.
  template <typename Number>
  bool Take(LinkField field, const char* name, std::string_view text, NumberRange range, Number& setting) {
    const std::optional<std::int64_t> number = ParseInteger(WithoutBlanks(text));
    if (number && range.Holds(*number)) {
      setting = static_cast<Number>(*number);
      return true;
    }
    Fault(field, std::string(name) + ": a number from " + range.Text());
    return false;
  }

  // The same; an empty text is no number.
  void Take(LinkField field, const char* name, std::string_view text, NumberRange range,
            std::optional<std::uint32_t>& setting) {
    std::uint32_t number = 0;
    if (WithoutBlanks(text).empty()) {
      setting.reset();
    } else if (Take(field, name, text, range, number)) {
      setting = number;
    }
  }

  template <typename Unit>
  void TakeTime(LinkField field, const char* name, std::string_view text, NumberRange range, Duration& setting) {
    typename Unit::rep number = 0;
    if (Take(field, name, text, range, number)) setting = Unit(number);
  }

  // `isGood` gets the text without the blanks around it.
  template <typename IsGood>
  void TakeText(LinkField field, const char* expected, std::string_view text, std::string& setting, IsGood isGood) {
    text = WithoutBlanks(text);
    if (IsPlain(text) && isGood(text)) {
      setting = text;
    } else {
      Fault(field, expected);
    }
  }

  void TakeFraming(std::string_view text) {
    const auto framing = ParseFraming(text);
    if (framing) {
      mResult.settings.framing = *framing;
    } else {
      Fault(Framing, "Framing: " + framing.error());
    }
  }

  [[nodiscard]] LinkSettings& Settings() { return mResult.settings; }
  [[nodiscard]] CheckedInput Result() { return std::move(mResult); }

 private:
  void Fault(LinkField field, std::string text) {
    if (UsesField(mResult.settings.transport, field)) mResult.faults.push_back({field, std::move(text)});
  }

  CheckedInput mResult;
};

bool IsFilled(std::string_view text) {
  return !text.empty();
}

bool IsHost(std::string_view text) {
  return !text.empty() && text.find(' ') == std::string_view::npos;
}

bool IsNumberToDial(std::string_view text) {
  return text.find_first_of("0123456789") != std::string_view::npos &&
         text.find_first_not_of(kDialMarks) == std::string_view::npos;
}

}  // namespace

bool UsesField(Transport transport, LinkField field) {
  const auto use = std::ranges::find(kUses, field, &FieldUse::field);
  return use->byTransport[static_cast<std::size_t>(transport)];
}

LinkInput InputOf(const LinkSettings& settings) {
  using namespace std::chrono;
  return {
      .transport = settings.transport,
      .model = settings.model,
      .host = settings.host,
      .tcpPort = std::to_string(settings.tcpPort),
      .serialPort = settings.serialPort,
      .baudRate = std::to_string(settings.baudRate),
      .framing = PrintFraming(settings.framing),
      .modemInit = settings.modem.init,
      .modemNumber = settings.modem.number,
      .isPulse = settings.modem.isPulse,
      .dialTimeOut = std::to_string(duration_cast<seconds>(settings.modem.dialTimeOut).count()),
      .redials = std::to_string(settings.modem.redials),
      .unit = std::to_string(settings.unit),
      .serialNumber = settings.serialNumber ? std::to_string(*settings.serialNumber) : "",
      .timeOut = std::to_string(duration_cast<milliseconds>(settings.timeOut).count()),
      .tries = std::to_string(settings.tries),
      .reconnects = settings.reconnects,
  };
}

CheckedInput CheckInput(const LinkInput& input, const LinkSettings& before) {
  using namespace std::chrono;
  Checker checker(input, before);
  LinkSettings& settings = checker.Settings();
  checker.TakeText(Model, "Model: choose one", input.model, settings.model, IsFilled);
  checker.TakeText(Host, "Host: a name or an address, without blanks", input.host, settings.host, IsHost);
  checker.Take(TcpPort, "TCP port", input.tcpPort, kTcpPorts, settings.tcpPort);
  checker.TakeText(SerialPort, "Port: choose one, or enter its name", input.serialPort, settings.serialPort, IsFilled);
  checker.Take(BaudRate, "Speed", input.baudRate, kBaudRates, settings.baudRate);
  checker.TakeFraming(input.framing);
  checker.TakeText(ModemInit, "Init text: at most 200 printable characters", input.modemInit, settings.modem.init,
                   [](std::string_view) { return true; });
  checker.TakeText(ModemNumber, "Telephone number: digits, and marks such as * # , W", input.modemNumber,
                   settings.modem.number, IsNumberToDial);
  checker.TakeTime<seconds>(DialTimeOut, "Time for dialling", input.dialTimeOut, kDialTimeOuts,
                            settings.modem.dialTimeOut);
  checker.Take(Redials, "Dial again", input.redials, kRedials, settings.modem.redials);
  checker.Take(Unit, "Unit id", input.unit, kUnitIds, settings.unit);
  checker.Take(SerialNumber, "Serial number, or nothing", input.serialNumber, kSerialNumbers, settings.serialNumber);
  checker.TakeTime<milliseconds>(TimeOut, "Time-out", input.timeOut, kTimeOuts, settings.timeOut);
  checker.Take(Tries, "Tries", input.tries, kTries, settings.tries);
  return checker.Result();
}

}  // namespace kv
