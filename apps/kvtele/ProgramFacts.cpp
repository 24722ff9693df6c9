#include "apps/kvtele/ProgramFacts.h"

#include <CLI/Option.hpp>
#include <algorithm>
#include <string_view>
#include <utility>

#include "apps/support/SimulatedControllers.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"
#include "models/ModelCatalogue.h"

namespace kv::cli {

using namespace mdlDataTypesView;

namespace {

// The parser writes them behind the type: "TEXT:{list,create,delete}".
std::vector<std::string> ChoicesOf(const std::string& type) {
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  std::vector<std::string> choices;
  std::string_view rest = std::string_view(type).substr(begin + 1, end - begin - 1);
  while (!rest.empty()) choices.emplace_back(TakeField(rest, ','));
  return choices;
}

std::string OneLine(std::string text) {
  std::ranges::replace(text, '\n', ' ');
  return text;
}

OptionFacts DescribeOption(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const bool isFlag = option.get_items_expected_max() == 0;
  OptionFacts facts{option.get_name(), isFlag ? "" : type.substr(0, type.find(':')), OneLine(option.get_description()),
                    ChoicesOf(type)};
  if (!isFlag && facts.value.empty()) facts.value = facts.name;
  return facts;
}

std::vector<std::string> Links() {
  std::vector<std::string> links;
  for (const std::string& model : SimulatedModels()) links.push_back("sim:" + model);
  for (const char* transport : {"tcp:", "serial:", "modem:", "listen:"}) links.emplace_back(transport);
  return links;
}

// A minus may stand for the blank of an operand's name.
std::vector<std::string> OperandNames() {
  std::vector<std::string> names;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    std::string name(TypeName(OperandTypeCode{code}));
    std::ranges::replace(name, ' ', '-');
    names.push_back(std::move(name));
  }
  return names;
}

bool IsFile(const std::string& value) {
  return value == "FILE" || value.starts_with("FILE.") || value == "VALUES";
}

}  // namespace

VerbFacts DescribeVerb(const CLI::App& app, std::string examples) {
  VerbFacts facts{app.get_name(), app.get_description(), std::move(examples), {}, {}};
  for (const CLI::Option* option : app.get_options()) {
    (option->get_positional() ? facts.arguments : facts.options).push_back(DescribeOption(*option));
  }
  return facts;
}

Offer OfferFor(const OptionFacts& option) {
  if (!ValuesOf(option).empty()) return Offer::Choices;
  if (option.name == "--session") return Offer::Sessions;
  if (option.value == "DIR") return Offer::Folders;
  return IsFile(option.value) ? Offer::Files : Offer::Nothing;
}

std::vector<std::string> ValuesOf(const OptionFacts& option) {
  if (!option.choices.empty()) return option.choices;
  if (option.value == "LINK") return Links();
  if (option.value == "MODEL") return {SelectableModels().begin(), SelectableModels().end()};
  if (option.value == "TYPE") return OperandNames();
  if (option.value == "BITS") return {"1", "8", "16", "32"};
  if (option.value == "FORMAT") return {"ascii", "binary", "unsigned", "hex", "decimal", "float"};
  return {};
}

}  // namespace kv::cli
