#include <algorithm>
#include <array>
#include <utility>

#include "apps/kvtele/CloneActions.h"
#include "apps/kvtele/TerminalCloner.h"
#include "apps/kvtele/VerbOutput.h"
#include "base/AnsiText.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "clone/CloneDiff.h"
#include "clone/CloneVerify.h"
#include "clone/ComparisonText.h"
#include "clone/ErasedSegments.h"
#include "clone/ManifestCheck.h"

namespace kv::cli {

namespace {

using Json = nlohmann::ordered_json;

// clang-format off
constexpr std::array kInfoLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"hardware code  ", "hardwareCode"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"cloned         ", "created"},
    DocumentLine{"format         ", "format"},
    DocumentLine{"unit           ", "unit"},
    DocumentLine{"lines          ", "frames"},
};
// clang-format on

Json RangesOf(const AddressRanges& ranges) {
  Json list = Json::array();
  for (const AddressRange& range : ranges.Ranges()) {
    list.push_back({{"first", ToHex(range.first, kAddressDigits)}, {"last", ToHex(range.last, kAddressDigits)}});
  }
  return list;
}

Json DocumentOf(const CloneSegment& segment) {
  return {
      {"code", AnsiToUtf8(segment.code)}, {"start", ToHex(segment.start, kAddressDigits)}, {"length", segment.length}};
}

Json DocumentOf(const CloneInfo& info, const std::filesystem::path& file) {
  Json document = {{"file", Utf8FromPath(file)}, {"sound", info.IsSound()}};
  const CloneHead head = info.head.value_or(CloneHead());
  document["model"] = AnsiToUtf8(head.version.model);
  document["hardwareCode"] = AnsiToUtf8(head.version.hardwareCode);
  document["os"] = AnsiToUtf8(head.version.osVersion);
  document["build"] = AnsiToUtf8(head.version.osBuild);
  document["created"] = AnsiToUtf8(head.created);
  document["format"] = AnsiToUtf8(head.format);
  document["unit"] = info.unit ? Json(*info.unit) : Json();
  document["frames"] = info.frames;
  document["segments"] = Json::array();
  for (const CloneInfoSegment& each : info.segments) {
    Json segment = DocumentOf(each.segment);
    segment["memory"] = !each.hasFrames ? Json() : Json(each.segment.kind == MemoryKind::Flash ? "flash" : "RAM");
    segment["storedBytes"] = each.covered.Bytes();
    segment["stored"] = RangesOf(each.covered);
    document["segments"].push_back(std::move(segment));
  }
  document["damageCount"] = info.damageCount;
  document["damages"] = Json::array();
  for (const LineError& damage : info.damages) {
    document["damages"].push_back({{"line", damage.line}, {"what", damage.what}});
  }
  return document;
}

std::string InfoText(const CloneInfo& info, const Json& document) {
  std::string text = info.head ? DocumentText(document, kInfoLines) : "";
  for (const CloneInfoSegment& each : info.segments) {
    text += "segment        " + SegmentText(each.segment) + ", " + std::to_string(each.covered.Bytes()) + " of them " +
            (each.segment.length == 0 ? "stored\n"
             : each.hasFrames         ? "stored, the rest is 255\n"
                                      : "stored: all of it was 255, and a restore leaves what is there\n");
  }
  if (info.IsSound()) return text + "damage         none\n";
  for (const LineError& damage : info.damages) text += "damage         " + damage.Text() + "\n";
  const std::size_t more = info.damageCount - info.damages.size();
  return more == 0 ? text : text + "damage         and " + std::to_string(more) + " more\n";
}

const char* NameOf(ManifestFit fit) {
  switch (fit) {
    case ManifestFit::Missing:
      return "missing";
    case ManifestFit::Unreadable:
      return "unreadable";
    case ManifestFit::Other:
      return "doesNotFit";
    case ManifestFit::Fits:
      break;
  }
  return "fits";
}

void AddManifest(const CloneInfo& info, const ManifestReport& report, VerbOutput& output) {
  output.document["sha256"] = info.sha256;
  output.document["manifest"] = {{"fit", NameOf(report.fit)}, {"text", report.text}};
  output.text += "manifest       " + report.text + "\n";
  if (!report.manifest) return;
  const CloneManifest& manifest = *report.manifest;
  Json& document = output.document["manifest"];
  document["serialNumber"] = manifest.serialNumber ? Json(*manifest.serialNumber) : Json();
  document["project"] = AnsiToUtf8(manifest.project);
  document["program"] = manifest.wasRunning ? "running" : "stopped";
  document["madeBy"] = manifest.madeBy;
  document["comment"] = manifest.comment;
  for (const auto& [label, value] :
       {std::pair("project        ", AnsiToUtf8(manifest.project)), std::pair("made by        ", manifest.madeBy),
        std::pair("comment        ", manifest.comment)}) {
    if (!value.empty()) output.text += label + value + "\n";
  }
}

VerbOutput MakeOutput(const CloneComparison& comparison) {
  VerbOutput output;
  output.exit = comparison.IsSame() ? ExitCode::Done : ExitCode::Differs;
  output.document = {{"same", comparison.IsSame()}, {"differingBytes", comparison.DifferingBytes()}};
  output.document["segments"] = Json::array();
  for (const SegmentDifference& each : comparison.segments) {
    Json segment = DocumentOf(each.segment);
    segment["differingBytes"] = each.differing.Bytes();
    segment["rangeCount"] = each.differing.RangeCount();
    segment["ranges"] = RangesOf(each.differing);
    output.document["segments"].push_back(std::move(segment));
  }
  const auto add = [&](const char* key, const std::vector<CloneSegment>& segments) {
    output.document[key] = Json::array();
    for (const CloneSegment& segment : segments) output.document[key].push_back(DocumentOf(segment));
  };
  add("onlyInFirst", comparison.onlyInFirst);
  add("onlyInSecond", comparison.onlyInSecond);
  for (const std::string& line : ComparisonLines(comparison)) output.text += line + "\n";
  return output;
}

void AddVerdicts(const CloneComparison& comparison, VerbOutput& output) {
  for (const KindVerdict& verdict : VerdictsByKind(comparison)) {
    output.document["verdicts"][verdict.isValues ? "values" : "program"] = {
        {"segments", verdict.codes}, {"same", verdict.bytes == 0}, {"differingBytes", verdict.bytes}};
    output.text += verdict.Text() + "\n";
  }
}

// Says what is known of the file before it is compared.
OrFailure<void> TellBeforeCompare(Environment& environment, ConnectedController& controller,
                                  const std::filesystem::path& file, const std::vector<std::string>& codes) {
  const WatchedWork watched(environment);
  const auto info = InspectClone(file, watched.Work());
  if (!info) return std::unexpected(CloneFailure("reading the clone file", info.error()));
  for (const std::string& code : codes) {
    const auto& segments = info->segments;
    if (std::ranges::any_of(segments, [&](const auto& each) { return each.segment.code == code; })) continue;
    return std::unexpected(UsageFailure("the clone file has no segment \"" + code + "\"", "see kvtele clone info"));
  }
  const ManifestReport manifest = CheckManifest(file, *info, watched.Work());
  if (info->IsSound()) environment.err << WholenessText(*info, manifest) << "\n";
  if (info->head && info->head->version.model != controller.Version().model) {
    environment.err << "Warning: " << OtherModelText(info->head->version, controller.Version()) << "\n";
  }
  return {};
}

}  // namespace

VerbResult ReportClone(Environment& environment, const std::filesystem::path& file) {
  const auto info = [&] {
    const WatchedWork watched(environment);
    return InspectClone(file, watched.Work());
  }();
  if (!info) return std::unexpected(CloneFailure("reading the clone file", info.error()));
  const ManifestReport manifest = CheckManifest(file, *info);
  VerbOutput output;
  output.document = DocumentOf(*info, file);
  output.text = InfoText(*info, output.document);
  AddManifest(*info, manifest, output);
  output.exit = info->IsSound() ? ExitCode::Done : ExitCode::BadFile;
  return output;
}

VerbResult CompareClones(Environment& environment, const std::filesystem::path& first,
                         const std::filesystem::path& second) {
  const auto comparison = [&] {
    const WatchedWork watched(environment);
    return DiffClones(first, second, watched.Work());
  }();
  if (!comparison) return std::unexpected(CloneFailure("comparing the clone files", comparison.error()));
  return MakeOutput(*comparison);
}

VerbResult CompareWithController(Environment& environment, const CommonOptions& common,
                                 const std::filesystem::path& file, const std::vector<std::string>& codes) {
  const auto controller = ConnectedController::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  return CompareWithController(environment, **controller, file, codes);
}

VerbResult CompareWithController(Environment& environment, ConnectedController& controller,
                                 const std::filesystem::path& file, const std::vector<std::string>& codes) {
  const std::string doing = "comparing the controller with " + Utf8FromPath(file);
  if (const auto fit = TellBeforeCompare(environment, controller, file, codes); !fit) {
    return std::unexpected(fit.error());
  }
  const auto comparison = [&] {
    const WatchedWork watched(environment);
    return VerifyClone(controller.Link(), file, watched.Work(), codes);
  }();
  if (!comparison) return std::unexpected(CloneFailure(doing, comparison.error()));
  VerbOutput output = MakeOutput(*comparison);
  AddVerdicts(*comparison, output);
  const auto staying = SegmentsThatStayed(*comparison);
  if (!staying.empty()) environment.err << StayText(staying) << " kvtele clone restore --erase-empty erases it.\n";
  return output;
}

}  // namespace kv::cli
