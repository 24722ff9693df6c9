#include <array>
#include <string_view>

#include "KvTele2/cache/CacheDiff.h"
#include "apps/kvtele/CacheActions.h"
#include "base/AnsiText.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "link/OsVersion.h"

namespace kv::cli {

namespace fs = std::filesystem;

namespace {

using namespace cache;
using Json = nlohmann::ordered_json;

constexpr std::array kKinds = {PanelResourceKind::Font, PanelResourceKind::Image};

std::string_view KindName(PanelResourceKind kind) {
  return kind == PanelResourceKind::Font ? "font" : "image";
}

// clang-format off
constexpr std::array kInfoLines = {
    DocumentLine{"model          ", "model"},
    DocumentLine{"serial number  ", "serialNumber"},
    DocumentLine{"O/S            ", "os"},
    DocumentLine{"build          ", "build"},
    DocumentLine{"project        ", "project"},
    DocumentLine{"saved          ", "saved"},
    DocumentLine{"fonts          ", "fonts"},
    DocumentLine{"images         ", "images"},
};
// clang-format on

Json DocumentOf(PanelResourceKind kind, const CachedResource& one) {
  return {{"kind", KindName(kind)},
          {"id", one.entry.id},
          {"name", AnsiToUtf8(one.entry.name)},
          {"bytes", one.entry.length},
          {"crc32", ToHex(one.entry.check, 8)},
          {"readAt", AnsiToUtf8(one.readAt)}};
}

std::string LineOf(const Json& resource) {
  return resource["kind"].get<std::string>() + "\t" + std::to_string(resource["id"].get<int>()) + "\t" +
         std::to_string(resource["bytes"].get<std::uint32_t>()) + "\t" + resource["crc32"].get<std::string>() + "\t" +
         resource["readAt"].get<std::string>() + "\t" + resource["name"].get<std::string>() + "\n";
}

// What is to be said of a damaged file: how much of it a repair would keep.
VerbOutput ReportDamage(const fs::path& file, const CacheError& error) {
  const CacheSalvage whole = SalvageCacheFile(file);
  VerbOutput output{.exit = ExitCode::BadFile};
  output.document = {{"file", Utf8FromPath(file)},
                     {"sound", false},
                     {"problem", error.file.what},
                     {"wholeFonts", whole.fonts.size()},
                     {"wholeImages", whole.images.size()}};
  output.text = error.Text() + ".\n" + Counted(whole.fonts.size(), "font") + " and " +
                Counted(whole.images.size(), "image") + " in it are whole.\n";
  return output;
}

void AddDifferences(PanelResourceKind kind, std::span<const PanelResource> first, std::span<const PanelResource> second,
                    const std::array<std::string, 2>& sides, VerbOutput& output) {
  for (const CacheDifference& one : Differences(kind, first, second)) {
    const std::string name = ResourceName(kind, {.id = one.id, .name = Utf8ToAnsi(one.name)});
    std::string_view how;
    switch (one.how) {
      case CacheDifferenceKind::OnlyInFirst:
        how = "onlyInFirst";
        output.text += name + " is only in " + sides[0] + "\n";
        break;
      case CacheDifferenceKind::OnlyInSecond:
        how = "onlyInSecond";
        output.text += name + " is only in " + sides[1] + "\n";
        break;
      case CacheDifferenceKind::OtherBytes:
        how = "otherBytes";
        output.text += name + " differs\n";
        break;
      case CacheDifferenceKind::OtherName:
        how = "otherName";
        output.text += name + " has another name\n";
        break;
    }
    output.document["differences"].push_back(
        {{"kind", KindName(kind)}, {"id", one.id}, {"name", one.name}, {"how", how}});
    output.exit = ExitCode::Differs;
  }
}

void AddVerdict(VerbOutput& output) {
  const bool isSame = output.exit == ExitCode::Done;
  output.document["same"] = isSame;
  if (isSame) output.text = "No differences.\n";
}

OrFailure<CacheContent> Read(const fs::path& file) {
  auto content = ReadCacheFile(file);
  if (!content) return std::unexpected(CacheFailure(content.error(), "reading the cache file"));
  return *std::move(content);
}

}  // namespace

Failure CacheFailure(const CacheError& error, std::string doing) {
  return {ExitCode::BadFile, "badFile", std::move(doing), error.Text(), {}, {}};
}

VerbResult ReportCache(const fs::path& file) {
  const auto content = ReadCacheFile(file);
  if (!content && content.error().CanBeRepaired()) return ReportDamage(file, content.error());
  if (!content) return std::unexpected(CacheFailure(content.error(), "reading the cache file"));
  const CacheOwner owner = content->owner.value_or(CacheOwner());
  VerbOutput output;
  output.document = {{"file", Utf8FromPath(file)},
                     {"sound", true},
                     {"model", AnsiToUtf8(owner.version.model)},
                     {"serialNumber", content->owner ? Json(owner.serialNumber) : Json()},
                     {"os", OsVersionText(owner.version)},
                     {"build", OsBuildText(owner.version)},
                     {"project", AnsiToUtf8(owner.project)},
                     {"saved", AnsiToUtf8(content->savedAt)},
                     {"fonts", Json()},
                     {"images", Json()},
                     {"resources", Json::array()}};
  for (const PanelResourceKind kind : kKinds) {
    if (!content->Part(kind)) continue;
    output.document[std::string(KindName(kind)) + "s"] = content->Part(kind)->size();
    for (const CachedResource& one : *content->Part(kind)) {
      output.document["resources"].push_back(DocumentOf(kind, one));
    }
  }
  output.text = DocumentText(output.document, kInfoLines);
  if (!output.document["resources"].empty()) output.text += "\n";
  for (const Json& resource : output.document["resources"]) output.text += LineOf(resource);
  return output;
}

VerbResult CompareCaches(const fs::path& first, const fs::path& second) {
  const auto one = Read(first);
  if (!one) return std::unexpected(one.error());
  const auto other = Read(second);
  if (!other) return std::unexpected(other.error());
  VerbOutput output{.document = {{"same", false}, {"differences", Json::array()}}};
  for (const PanelResourceKind kind : kKinds) {
    AddDifferences(kind, EntriesOf(*one, kind), EntriesOf(*other, kind), {Utf8FromPath(first), Utf8FromPath(second)},
                   output);
  }
  AddVerdict(output);
  return output;
}

VerbResult CompareCacheWithController(Environment& environment, const CommonOptions& common, const fs::path& file) {
  const auto content = Read(file);
  if (!content) return std::unexpected(content.error());
  const auto controller = ConnectedController::Open(environment, common);
  if (!controller) return std::unexpected(controller.error());
  const auto info = (*controller)->AskInfo();
  if (!info) return std::unexpected(info.error());
  const CacheOwner now{(*controller)->Version(), info->serialNumber, info->projectName};
  if (content->owner && !content->owner->IsController(now)) {
    environment.err << "Warning: the cache is of another controller: " << AnsiToUtf8(content->owner->version.model)
                    << ", serial number " << content->owner->serialNumber << "\n";
  }
  PanelLink* panel = (*controller)->Link().Panel();
  VerbOutput output{.document = {{"same", false}, {"differences", Json::array()}}};
  for (const PanelResourceKind kind : kKinds) {
    const auto directory = panel->Directory(kind, (*controller)->Unit());
    if (!directory) return std::unexpected(LinkFailure(panel->LastError(), true));
    AddDifferences(kind, EntriesOf(*content, kind), directory->entries, {Utf8FromPath(file), "the controller"}, output);
  }
  AddVerdict(output);
  return output;
}

}  // namespace kv::cli
