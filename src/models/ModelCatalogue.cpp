#include "models/ModelCatalogue.h"

#include <algorithm>
#include <array>

#include "base/Texts.h"

namespace kv {
namespace {

using Text = std::string_view;

// "K660-T25B" is a text of its own beside the full form.
constexpr auto kColourTexts = std::to_array<Text>({
    "K670-67-C30 / K390-29-C30",
    "K670-67-T40 / K390-29-T40",
    "K670-67-T34 / K390-29-T34",
    "K670-67-T20 / K390-29-T20",
    "FACTORY BOOT",
    "CLR BOOT",
    "K660-66-C30",
    "K660-66-T40",
    "K660-66-T34",
    "K660-66-T20",
    "K660-T25B",
    "K660-66-T25B",
    "K2040",
    "K2040 BOOT",
    "K2040/K2210 FACTORY BOOT",
    "K2210",
    "K2210 BOOT",
});

constexpr auto kColourPrefixes = std::to_array<Text>({"K450", "TQ45", "K530", "TQ53", "TQ80", "K800"});
constexpr auto kExtendedColourPrefixes = std::to_array<Text>({"K670", "K450", "K204", "K221", "K530", "K800"});

struct PrefixRow {
  Text prefix;
  Text result;
};

constexpr Text kCompactDesignerCode = "Q50_BRIO";

constexpr auto kDesignerCodes = std::to_array<PrefixRow>({
    {"K330", "K3XX"},
    {"K360", "K3XX"},
    {"K380", "K3XX"},
    {"K390", "K3XX"},
    {"K630", "K3XX"},
    {"K220", "K220"},
    {"K230", "K230"},
    {"K670", "K670"},
    {"K450", "K450"},
    {"Brio", kCompactDesignerCode},
    {"BRIO", kCompactDesignerCode},
    {"K204", "K2040"},
    {"K221", "K2210"},
    {"TQ45", "TQ45"},
    {"TQ53", "TQ53"},
    {"K530", "K530"},
    {"TQ80", "TQ80"},
    {"K800", "K800"},
});

constexpr auto kReportedVariants = std::to_array<PrefixRow>({
    {"BR", "BRIO"},
    {"Br", "BRIO"},
    {"Q50-2", "Q50"},
    {"Q51-2", "Q51"},
    {"Q58-", "Q58"},
    {"PX1-", "PX1"},
    {"PR1-", "PR1"},
});

constexpr auto kSelectableModels = std::to_array<Text>({
    "K220-22-R1",
    "K220-32",
    "K230",
    "K330",
    "K360",
    "K380-28",
    "K390",
    "K630",
    "K450-45",
    "K530",
    "K530-J",
    "K660-66-C30",
    "K660-66-T40",
    "K660-66-T34",
    "K660-66-T20",
    "K660-66-T25B",
    "K670-67-C30 / K390-29-C30",
    "K670-67-T40 / K390-29-T40",
    "K670-67-T34 / K390-29-T34",
    "K670-67-T20 / K390-29-T20",
    "K800",
    "K2040",
    "K2210",
    "TQ45",
    "TQ53",
    "TQ80",
    "TQ80-OEM",
    "Q50",
    "Q50Net",
    "AurexQ50",
    "Q51",
    "Q58",
    "PX1",
    "PR1",
    "BRIO",
});

bool BeginsWithOneOf(Text text, std::span<const Text> prefixes) {
  return std::ranges::any_of(prefixes, [text](Text prefix) { return text.starts_with(prefix); });
}

// The result of the first row whose prefix the text begins with; empty when there is none.
Text FirstMatch(Text text, std::span<const PrefixRow> rows) {
  const auto row = std::ranges::find_if(rows, [text](const PrefixRow& each) { return text.starts_with(each.prefix); });
  return row == rows.end() ? Text() : row->result;
}

}  // namespace

bool IsCompactModel(std::string_view model) {
  return model == "Q50" || model == "AurexQ50" || model == "Q50Net";
}

bool IsCompactDriverModel(std::string_view model) {
  return model == "Q50" || model == "Q50Net";
}

bool IsCompactOrBrio(std::string_view model) {
  return IsCompactDriverModel(model) || IsBrioModel(model);
}

bool IsBrioModel(std::string_view model) {
  return UpperCased(model) == "BRIO";
}

bool IsBrioCode(std::string_view reported) {
  return reported.starts_with("BR") || reported.starts_with("Br");
}

bool IsCompactIdentification(std::string_view reported) {
  return reported.starts_with("Q50-2") || reported.starts_with("Q51-2") || IsBrioCode(reported);
}

bool IsColourModel(std::string_view model) {
  return std::ranges::find(kColourTexts, model) != kColourTexts.end() || BeginsWithOneOf(model, kColourPrefixes);
}

bool IsExtendedColourModel(std::string_view model) {
  return BeginsWithOneOf(model, kExtendedColourPrefixes);
}

bool IsK230Model(std::string_view model) {
  return model.starts_with("K230");
}

std::string_view DesignerModelCode(std::string_view model) {
  if (model.starts_with("Q50") || model == "AurexQ50") return kCompactDesignerCode;
  const Text code = FirstMatch(model, kDesignerCodes);
  return code == "TQ80" && model.contains("OEM") ? "TQ80-OEM" : code;
}

bool GridFilesMustGo(std::string_view oldModel, std::string_view newModel) {
  const auto hasWideGrid = [](Text model) { return IsExtendedColourModel(model) || IsK230Model(model); };
  if (IsCompactModel(newModel) != IsCompactModel(oldModel)) return true;
  if (hasWideGrid(oldModel) && !hasWideGrid(newModel)) return true;
  return IsExtendedColourModel(oldModel) && !IsExtendedColourModel(newModel);
}

std::span<const std::string_view> SelectableModels() {
  return kSelectableModels;
}

std::string ModelOfIdentification(std::string_view reported) {
  const Text model = FirstMatch(reported, kReportedVariants);
  return std::string(model.empty() ? reported : model);
}

}  // namespace kv
