#include "KvTele2/cache/CacheScreen.h"

#include <algorithm>
#include <utility>

#include "KvTele2/cache/CacheFormat.h"
#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/Texts.h"

namespace kv::cache {
namespace {

constexpr std::size_t kMostNamed = 5;  // in one sentence

const std::optional<PanelDirectory>& DirectoryOf(const ControllerDirectories& directories, PanelResourceKind kind) {
  return kind == PanelResourceKind::Font ? directories.fonts : directories.images;
}

void TakeOne(PanelResourceKind kind, const CachedResource& resource, panel::ScreenResources& resources, CacheFit& fit) {
  const auto added = resources.Add(kind, resource.entry.id, resource.bytes);
  if (added) {
    ++fit.taken;
    return;
  }
  fit.gaps.push_back({.kind = kind,
                      .id = resource.entry.id,
                      .name = resources.NameOf(kind, resource.entry.id),
                      .reason = CacheGapReason::Unusable,
                      .detail = added.error()});
}

void TakePart(PanelResourceKind kind, const CachePart& part, panel::ScreenResources& resources, CacheFit& fit) {
  for (const CachedResource& one : part) {
    resources.Name(kind, one.entry.id, AnsiToUtf8(one.entry.name));
    TakeOne(kind, one, resources, fit);
  }
}

void TakeEntry(PanelResourceKind kind, const PanelResource& wanted, const std::optional<CachePart>& part,
               panel::ScreenResources& resources, CacheFit& fit) {
  resources.Name(kind, wanted.id, AnsiToUtf8(wanted.name));
  const auto gap = [&](CacheGapReason reason) {
    fit.gaps.push_back(
        {.kind = kind, .id = wanted.id, .name = resources.NameOf(kind, wanted.id), .reason = reason, .detail = {}});
  };
  if (!part) return gap(CacheGapReason::Lacks);
  const auto found = std::ranges::find(*part, wanted.id, [](const CachedResource& one) { return one.entry.id; });
  if (found == part->end()) return gap(CacheGapReason::Lacks);
  if (!HasBytesOf(found->entry, wanted)) return gap(CacheGapReason::Outdated);
  TakeOne(kind, *found, resources, fit);
}

}  // namespace

std::string FitText(const CacheFit& fit, const std::string& file) {
  if (fit.isOtherModel) return file + " is of another model: nothing is taken from it.";
  if (fit.gaps.empty()) return {};
  std::string names;
  for (std::size_t i = 0; i < std::min(fit.gaps.size(), kMostNamed); ++i) {
    names += (i == 0 ? "" : ", ") + fit.gaps[i].name;
  }
  if (fit.gaps.size() > kMostNamed) names += " and " + std::to_string(fit.gaps.size() - kMostNamed) + " more";
  const auto is = [&](CacheGapReason reason) { return std::ranges::count(fit.gaps, reason, &CacheGap::reason) > 0; };
  std::string why = is(CacheGapReason::Outdated) ? "have changed in the controller since" : "";
  if (is(CacheGapReason::Lacks)) why = "are missing in it" + (why.empty() ? "" : " or " + why);
  if (is(CacheGapReason::Unusable)) why += (why.empty() ? "" : " or ") + std::string("are no font or image");
  return Counted(fit.gaps.size(), "font or image", "fonts and images") + " of the controller cannot be taken from " +
         file + ", for they " + why + ": " + names + ".";
}

bool IsOfOtherModel(const CacheContent& content, const std::string& model) {
  return content.owner && content.owner->version.model != model;
}

CacheChoice ChooseCache(const std::vector<std::string>& files, const std::string& model) {
  CacheChoice choice;
  for (std::size_t i = 0; i < files.size(); ++i) {
    auto content = ReadCacheFile(PathFromUtf8(files[i]));
    choice.fits = content && !IsOfOtherModel(*content, model);
    if (!content) choice.passedOver.push_back(content.error().Text() + ". The next cache file of the list is used.");
    if (i == 0 || choice.fits) choice.content = std::move(content);
    if (!choice.fits) continue;
    choice.index = i;
    return choice;
  }
  choice.passedOver.clear();  // for nothing: what is wrong with the first is told by who uses it
  return choice;
}

bool IsCurrent(const CacheContent& content, PanelResourceKind kind, const PanelDescription& panel) {
  const std::uint32_t check = kind == PanelResourceKind::Font ? panel.fontsCheck : panel.imagesCheck;
  return content.Part(kind) && DirectoryCheck(*content.Part(kind)) == check;
}

CacheFit TakeFromCache(const CacheContent& content, const std::string& model, const ControllerDirectories& directories,
                       panel::ScreenResources& resources) {
  resources.Clear();
  CacheFit fit;
  fit.isOtherModel = IsOfOtherModel(content, model);
  if (fit.isOtherModel) return fit;
  for (const PanelResourceKind kind : kCacheKinds) {
    const auto& part = content.Part(kind);
    if (const auto& directory = DirectoryOf(directories, kind)) {
      for (const PanelResource& wanted : directory->entries) TakeEntry(kind, wanted, part, resources, fit);
    } else if (part) {
      TakePart(kind, *part, resources, fit);
    }
  }
  return fit;
}

std::expected<CacheFit, LinkError> TakeFromCache(const CacheContent& content, const std::string& model,
                                                 const PanelDescription& panel, PanelLink& link, std::uint8_t unit,
                                                 panel::ScreenResources& resources) {
  ControllerDirectories directories;
  const bool isOtherModel = IsOfOtherModel(content, model);
  for (const PanelResourceKind kind : kCacheKinds) {
    const bool isAsked = panel.kind == PanelKind::Colour && !isOtherModel && !IsCurrent(content, kind, panel);
    if (!isAsked) continue;
    auto directory = link.Directory(kind, unit);
    if (!directory) return std::unexpected(link.LastError());
    (kind == PanelResourceKind::Font ? directories.fonts : directories.images) = *std::move(directory);
  }
  return TakeFromCache(content, model, directories, resources);
}

}  // namespace kv::cache
