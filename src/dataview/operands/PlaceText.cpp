#include "dataview/operands/PlaceText.h"

#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

struct PlaceWords {
  std::string name;
  std::string_view digits;
};

PlaceWords WordsOf(std::string_view text) {
  const std::size_t last = text.find_last_not_of("0123456789");
  const std::size_t digits = last == std::string_view::npos ? 0 : last + 1;
  return {UpperCased(TrimBlanks(text.substr(0, digits))), text.substr(digits)};
}

}  // namespace

std::expected<OperandPlace, std::string> ParsePlace(std::string_view text, OperandTypeCode current,
                                                    std::string_view model) {
  const auto [name, digits] = WordsOf(TrimBlanks(text));
  if (name.empty() && digits.empty()) return std::unexpected("Enter a type and an address, such as MI 100.");
  const auto type = name.empty() ? current : TypeFromName(name);
  if (!type) return std::unexpected("There is no operand type \"" + name + "\".");
  const std::string known(TypeName(*type));
  const std::int32_t count = OperandCount(*type, model);
  if (count == 0) return std::unexpected("The model " + std::string(model) + " has no " + known + ".");
  const auto address = digits.empty() ? 0 : ParseInteger(digits);
  if (!address || *address >= count) {
    return std::unexpected(known + " has the addresses 0 to " + std::to_string(count - 1) + ".");
  }
  return OperandPlace{*type, static_cast<std::int32_t>(*address)};
}

}  // namespace kv::mdlDataTypesView
