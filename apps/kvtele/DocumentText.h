#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

namespace kv::cli {

// One line of a document as text.
struct DocumentLine {
  std::string_view label;  // padded to one width
  std::string_view key;    // of the document
};

// The document for the screen, a line for each key; what is empty or not known is shown as "-".
[[nodiscard]] std::string DocumentText(const nlohmann::ordered_json& document, std::span<const DocumentLine> lines);

}  // namespace kv::cli
