#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

#include "apps/kvtele/Failure.h"

namespace kv::cli {

// The result of a command, in both forms: text for the screen, ending with a line feed when there is any, and the one
// document of --json. A comparison that found a difference is a result too, with an exit code of its own.
struct VerbOutput {
  std::string text{};
  nlohmann::ordered_json document{};
  ExitCode exit = ExitCode::Done;
};

// How a command ends.
using VerbResult = OrFailure<VerbOutput>;

// One line of a document as text.
struct DocumentLine {
  std::string_view label;  // padded to one width
  std::string_view key;    // of the document
};

// The document for the screen, a line for each key; what is empty or not known is shown as "-".
[[nodiscard]] std::string DocumentText(const nlohmann::ordered_json& document, std::span<const DocumentLine> lines);

}  // namespace kv::cli
