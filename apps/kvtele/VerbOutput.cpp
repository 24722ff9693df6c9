#include "apps/kvtele/VerbOutput.h"

#include "desktop/console/HarmlessText.h"

namespace kv::cli {

namespace {

std::string Shown(const nlohmann::ordered_json& value) {
  const std::string text = value.is_null() ? "" : value.is_string() ? value.get<std::string>() : value.dump();
  return text.empty() ? "-" : HarmlessText(text);  // a line end in it would look like one more line
}

}  // namespace

std::string DocumentText(const nlohmann::ordered_json& document, std::span<const DocumentLine> lines) {
  std::string text;
  for (const DocumentLine& line : lines) {
    text.append(line.label).append(Shown(document.at(std::string(line.key)))).append("\n");
  }
  return text;
}

}  // namespace kv::cli
