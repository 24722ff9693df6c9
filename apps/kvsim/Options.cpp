#include "apps/kvsim/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "base/Numbers.h"
#include "base/Texts.h"
#include "simulator/ModelTable.h"

namespace kvsim {
namespace {

constexpr const char* kExamples = R"(Examples:
  kvsim --model K220-22-R1 --tcp 20300            a controller that anybody on this computer can connect to
  kvsim --model Q50 --pty ./plc --baud 9600       a compact controller on a serial line of 9600 baud
  kvsim --model K220-22-R1 --tcp 0 --fault noreply:every=10 --seed 7
                                                  one that leaves every tenth request unanswered
  kvsim --model K220-22-R1 --pty ./plc --modem    a controller behind a modem
  kvsim --list-models                             which models there are
  kvsim make --help                               writes projects and O/S files for them

Serves a simulated controller until Ctrl-C.
)";

const std::map<std::string, sim::DialResult> kDialResults{{"connect", sim::DialResult::Connect},
                                                          {"busy", sim::DialResult::Busy},
                                                          {"no-carrier", sim::DialResult::NoCarrier},
                                                          {"no-dialtone", sim::DialResult::NoDialTone},
                                                          {"no-answer", sim::DialResult::NoAnswer}};

const std::map<std::string, sim::ModemAnswers> kModemAnswers{
    {"words", sim::ModemAnswers::Words}, {"numbers", sim::ModemAnswers::Numbers}, {"none", sim::ModemAnswers::None}};

// Puts the examples before everything else.
class ExamplesFirst : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App* app) const override {
    return app->get_parent() == nullptr ? std::string(kExamples) + "\n" : Formatter::make_description(app);
  }
};

// The range stands in the text of the option already.
CLI::Validator Within(int least, int most) {
  return CLI::Range(least, most).description("");
}

std::string CheckHostAndPort(const std::string& text) {
  return ParseHostAndPort(text) ? "" : "HOST:PORT was expected, for example 192.168.1.10:20300, not \"" + text + "\"";
}

std::string CheckBaud(const std::string& text) {
  const auto baud = kv::ParseInteger(text);
  const bool isGood = baud && (*baud == 0 || (*baud >= 300 && *baud <= 921600));
  return isGood ? "" : "300 to 921600 baud was expected, or 0 for no limit, not \"" + text + "\"";
}

// What the parser writes into beside the options themselves.
struct Raw {
  int unit = 1;
  int restartTime = 200;
  std::optional<int> tcp;
  std::string dial;
  bool modem = false;
  sim::DialResult dialResult = sim::DialResult::Connect;
  sim::ModemAnswers modemAnswers = sim::ModemAnswers::Words;
};

void DescribeController(CLI::App& app, sim::SimulatorOptions& controller, Raw& raw) {
  app.add_option("--model", controller.model, "Model of the controller (see --list-models)")->type_name("MODEL");
  app.add_option("--os", controller.osVersion, "Its O/S version, for example 4.60")->type_name("VERSION");
  app.add_option("--build", controller.osBuild, "Its O/S build, 0 to 99")->type_name("N")->check(Within(0, 99));
  app.add_option("--unit", raw.unit, "Its unit id, 0 to 255")->type_name("N")->check(Within(0, 255));
  app.add_option("--serial-number", controller.serialNumber, "Its serial number, when it keeps no other in its file")
      ->type_name("N");
  app.add_flag("--boot", controller.boot, "Start in its boot loader");
  app.add_option("--password", controller.password, "Its password, at most 8 characters")->type_name("PW");
  app.add_option("--state", controller.stateFile, "Keep its memory in this file")->type_name("FILE");
  app.add_option("--memory-seed", controller.memorySeed,
                 "What its memory holds at first: two controllers of a model with different numbers differ")
      ->type_name("N");
  app.add_option("--baud", controller.baud,
                 "Imitate a serial line of this speed; a terminal that is set to another one hears noise")
      ->type_name("BAUD")
      ->check(CheckBaud, "", "baud");
  app.add_option("--restart-time", raw.restartTime, "How long it is silent after a reset, 0 to 60000. Default: 200")
      ->type_name("MS")
      ->check(Within(0, 60000));
  app.add_option("--fault", controller.faults, "Misbehave by this rule; may be given again")->type_name("RULE");
  app.add_option("--seed", controller.seed, "Of the faults and the moving values: the same seed, the same run")
      ->type_name("N");
}

void DescribeWaysIn(CLI::App& app, Options& options, Raw& raw) {
  auto* ways = app.add_option_group("Way in", "exactly one of these");
  ways->add_option("--tcp", raw.tcp, "Listen on this TCP port; 0 picks a free one")
      ->type_name("PORT")
      ->check(Within(0, 65535));
  ways->add_option("--pty", options.pty, "Make a pseudo terminal and this link to it")->type_name("LINK");
  ways->add_option("--dial", raw.dial, "Dial out to a driver that listens")
      ->type_name("HOST:PORT")
      ->check(CheckHostAndPort, "", "place");
  ways->add_flag("--list-models", options.listsModels, "List the models and end");
  ways->require_option(1);
  app.add_option("--bind", options.bind, "Address that --tcp listens on")->capture_default_str()->type_name("ADDRESS");
  app.add_flag("--modem", raw.modem, "Put a modem before the controller");
  app.add_option("--dial-result", raw.dialResult, "What dialling that modem comes to")
      ->transform(CLI::CheckedTransformer(kDialResults, CLI::ignore_case).description(""))
      ->type_name("connect|busy|no-carrier|no-dialtone|no-answer");
  app.add_option("--modem-answers", raw.modemAnswers, "How that modem answers commands after a reset")
      ->transform(CLI::CheckedTransformer(kModemAnswers, CLI::ignore_case).description(""))
      ->type_name("words|numbers|none");
}

// How many single changes of a letter lead from one name to the other.
std::size_t Distance(const std::string& left, const std::string& right) {
  std::vector<std::size_t> row(right.size() + 1);
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j < row.size(); ++j) {
      const std::size_t change = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, change}));
    }
  }
  return row.back();
}

}  // namespace

std::expected<Options, int> ReadOptions(int argc, const char* const* argv) {
  Options options;
  options.controller.seed = std::random_device{}();
  Raw raw;
  CLI::App app("", "kvsim");
  app.allow_windows_style_options(false);  // a slash begins a path, on every system
  app.formatter(std::make_shared<ExamplesFirst>());
  DescribeController(app, options.controller, raw);
  DescribeWaysIn(app, options, raw);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return std::unexpected(app.exit(error) == 0 ? kDone : kUsage);
  }
  options.controller.unit = static_cast<std::uint8_t>(raw.unit);
  options.controller.restartTime = std::chrono::milliseconds(raw.restartTime);
  if (raw.tcp) options.tcp = static_cast<std::uint16_t>(*raw.tcp);
  if (!raw.dial.empty()) options.dial = ParseHostAndPort(raw.dial);
  if (raw.modem) options.modem = sim::ModemOptions{.result = raw.dialResult, .answers = raw.modemAnswers};
  return options;
}

std::optional<HostAndPort> ParseHostAndPort(const std::string& text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0) return std::nullopt;
  const auto port = kv::ParseInteger(text.substr(colon + 1));
  if (!port || *port < 1 || *port > 65535) return std::nullopt;
  auto host = text.substr(0, colon);
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
  return HostAndPort{std::move(host), static_cast<std::uint16_t>(*port)};
}

std::string UnknownModelText(const std::string& name) {
  constexpr std::size_t kNear = 3;
  std::vector<std::pair<std::size_t, std::string_view>> models;
  for (const auto& model : sim::AllModels()) {
    const auto distance = [&name](std::string_view to) { return Distance(kv::UpperCased(name), kv::UpperCased(to)); };
    models.emplace_back(std::min(distance(model.name), distance(model.reported)), model.name);
  }
  std::sort(models.begin(), models.end());
  std::string text = "there is no model \"" + name + "\"; the nearest are";
  for (std::size_t i = 0; i < std::min(kNear, models.size()); ++i)
    text += (i == 0 ? " " : ", ") + std::string(models[i].second);
  return text + " (--list-models lists all)";
}

std::string ModelListText() {
  std::ostringstream text;
  const auto line = [&text](auto name, auto family, auto os, auto screen) {
    text << std::left << std::setw(30) << name << std::setw(9) << family << std::setw(7) << os << screen << '\n';
  };
  line("Model", "Family", "O/S", "Screen");
  for (const auto& model : sim::AllModels()) {
    const std::string size = std::to_string(model.display.width) + " x " + std::to_string(model.display.height);
    line(model.name, model.family == sim::Family::Aurex ? "Aurex" : "compact", model.osVersion,
         model.HasColour()                                ? "colour, " + size
         : model.display.kind == sim::Display::Kind::None ? "none"
                                                          : "text, " + size);
  }
  return text.str();
}

}  // namespace kvsim
