#include "download/DownloadPreview.h"

#include <array>

#include "base/AnsiText.h"
#include "base/Texts.h"
#include "clone/DumpWindow.h"
#include "download/FileFields.h"
#include "link/LinkLimits.h"
#include "link/TimeOnLink.h"

namespace kv {
namespace {

using Text = std::optional<std::string>;

struct Fact {
  const char* label;
  Text DownloadSide::* text;
};

constexpr std::array kFacts = {
    Fact{"Model", &DownloadSide::model},
    Fact{"O/S", &DownloadSide::os},
    Fact{"System fonts", &DownloadSide::fonts},
    Fact{"Project", &DownloadSide::project},
};

std::string Shown(const Text& text) {
  if (!text) return "-";
  return text->empty() ? "(none)" : *text;
}

}  // namespace

std::string KeptName(const std::string& name) {
  return AnsiToUtf8(TrimBlanks(Utf8ToAnsi(name).substr(0, kLongestProjectName)));
}

DownloadSide SideOf(const FoundController& controller) {
  const bool isInBoot = IsBootLoader(controller);  // which tells of no O/S
  return {.model = ShownText(controller.version.model),
          .os = isInBoot ? std::nullopt : std::optional(controller.OsText()),
          .fonts = {},
          .project = controller.ProjectText()};
}

std::string CloneTimeText(const Channel& link, int passes) {
  if (passes == 0) return "";
  constexpr std::uint64_t kBlocks = 100 * 1024 / kDumpBlock;
  constexpr std::uint64_t kAroundBlock = 60;  // head, address, tag and check, of request and reply
  return "the controller's memory goes over it " + std::to_string(passes) + " times for the clones, each time about " +
         TimeOnLinkText(TimeOnLink(link, kBlocks * (2 * kDumpBlock + kAroundBlock), kBlocks)) + " for 100 KiB of it";
}

std::vector<SideRow> RowsOf(const DownloadSide& first, const DownloadSide& second) {
  std::vector<SideRow> rows;
  for (const Fact& fact : kFacts) {
    if (!(first.*fact.text) && !(second.*fact.text)) continue;
    rows.push_back({fact.label, Shown(first.*fact.text), Shown(second.*fact.text)});
  }
  return rows;
}

std::string AmountText(const DownloadPreview& preview) {
  return Counted(preview.bytes, "byte") + ", about " + TimeOnLinkText(preview.about) +
         " on this link, and the time that the controller takes to erase and to program" +
         (preview.clones.empty() ? "" : "; besides, " + preview.clones);
}

std::vector<std::string> DifferencesFrom(const DownloadSide& file, const DownloadSide& after) {
  std::vector<std::string> differences;
  for (const Fact& fact : kFacts) {
    const Text& expected = file.*fact.text;
    const Text& found = after.*fact.text;
    if (!expected || !found || *expected == *found) continue;
    if (fact.text == &DownloadSide::project && KeptName(*expected) == KeptName(*found)) continue;
    differences.push_back(std::string(fact.label) + ": the controller says \"" + *found + "\", and the file \"" +
                          *expected + "\".");
  }
  return differences;
}

}  // namespace kv
