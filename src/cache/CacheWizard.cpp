#include "cache/CacheWizard.h"

#include <vector>

#include "base/PathText.h"
#include "base/Texts.h"
#include "base/Utf8.h"
#include "sessions/RecentCaches.h"
#include "sessions/SessionIni.h"

namespace kv {
namespace {

constexpr std::size_t kLongestLabel = 40;  // characters of the path
constexpr std::size_t kFirstPart = 20;
constexpr std::size_t kLastPart = 17;
constexpr std::uint64_t kKibibyte = 1024;

// Where each character of a UTF-8 text begins.
std::vector<std::size_t> StartsOf(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::string_view rest = text; !rest.empty();) {
    starts.push_back(text.size() - rest.size());
    (void)TakeCharacter(rest);
  }
  return starts;
}

std::string KeptOf(const cache::CacheStepPlan& step, std::string_view noun) {
  if (step.kept == 0) return {};
  return std::to_string(step.kept) + " of " + Counted(step.count, noun);
}

}  // namespace

std::string ChosenCache::Name() const {
  return Utf8FromPath(mFile.filename());
}

std::string ChosenCache::Label() const {
  const std::string path = Utf8FromPath(mFile);
  const std::vector<std::size_t> starts = StartsOf(path);
  if (starts.size() <= kLongestLabel) return "File: " + path;
  return "File: " + path.substr(0, starts[kFirstPart]) + "..." + path.substr(starts[starts.size() - kLastPart]);
}

std::string ChosenCache::Hint() const {
  return "Selected File: " + Utf8FromPath(mFile);
}

cache::CacheImportOrder ImportOrder(const SharedState& shared, const std::filesystem::path& file) {
  return {.file = file, .workingFile = SessionFile(shared, "tmpfile.ktc"), .emptyCache = shared.paths.EmptyCache()};
}

std::string CacheNameOf(std::string model) {
  for (std::size_t at = 0; (at = model.find_first_of(kForbiddenInNames, at)) != std::string::npos;) model[at] = '-';
  return (model.empty() ? "Controller" : model) + ".ktc";
}

std::string KeptText(const cache::CacheImportPlan& plan) {
  const std::string fonts = KeptOf(plan.fonts, "font");
  const std::string images = KeptOf(plan.images, "image");
  if (fonts.empty() && images.empty()) return {};
  return fonts + (fonts.empty() || images.empty() ? "" : " and ") + images +
         " are in the file already, and are not read again.";
}

std::string PreviewText(const cache::CacheImportPlan& plan, const cache::CacheImportOrder& wishes) {
  std::uint64_t bytes = 0;
  for (const auto& [step, wanted] : {std::pair(&plan.fonts, wishes.fonts), std::pair(&plan.images, wishes.images)}) {
    if (wanted) bytes += step->bytesToRead + (wishes.readsAll ? step->bytesKept : 0);
  }
  if (bytes == 0) return "Nothing has to be read: the file has all of it already. The display stays as it is.";
  return "To be read, while the display shows SYSTEM mode: " + cache::ReadingText(plan, bytes) + ".";
}

std::string AmountText(const cache::CacheProgress& progress) {
  const auto kibibytes = [](std::uint64_t bytes) { return std::to_string((bytes + kKibibyte - 1) / kKibibyte); };
  std::string text = progress.resource + (progress.resource.empty() ? "" : ", ") + kibibytes(progress.done) + " of " +
                     kibibytes(progress.total) + " KiB";
  return text + (progress.left.empty() ? "" : ", ") + progress.left;
}

void UseCache(SharedState& shared, RemoteHost& host, const std::filesystem::path& file) {
  if (const auto added = AddRecentCache(shared, Utf8FromPath(file))) {
    host.SetRecentCaches(*added);
  } else {
    host.StatusMessage(added.error());
  }
  (void)host.OpenColourCache(Utf8FromPath(file));  // why not, it tells by itself
}

}  // namespace kv
