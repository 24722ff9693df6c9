#include "download/CompactProjectFile.h"

#include <algorithm>
#include <optional>

#include "base/LineError.h"
#include "download/CompactProjectImage.h"
#include "download/DecodeFile.h"
#include "download/FileFields.h"
#include "download/ReadDownload.h"
#include "link/AsciiFrame.h"

namespace kv {
namespace {

constexpr std::string_view kSignature = "T50 Ladder Download File";
constexpr std::size_t kLargestFile = std::size_t{16} << 20;
constexpr std::size_t kMostLines = 200'000;  // far more than a controller's memory takes; a bound on what is kept

// The lines, descrambled; nothing when there are too many. Empty ones at the end do not count.
std::optional<std::vector<std::string>> LinesOf(std::string_view bytes) {
  std::vector<std::string> lines;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (lines.size() == kMostLines) return std::nullopt;
    lines.push_back(DecodeLine(line, lines.size()));
  }
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

bool HasDownloadPair(const std::vector<std::string>& lines) {
  const auto pair = std::ranges::adjacent_find(
      lines, [](const auto& left, const auto& right) { return left == "DE" && right == "DI"; });
  return pair != lines.end();
}

bool FitsFrame(const std::string& line) {
  return !line.empty() && line.size() <= kMaxFrameText &&
         std::ranges::all_of(line, [](char c) { return c >= 0x20 && c <= 0x7E; });
}

}  // namespace

std::expected<CompactProjectFile, DownloadFileError> ParseCompactProject(std::string_view bytes,
                                                                         const std::string& file) {
  const FaultsOf faults(file);
  auto lines = LinesOf(bytes);
  if (!lines) return faults.NotLegal("expected at most " + std::to_string(kMostLines) + " lines");
  if (lines->size() < kCompactProjectHeadLines || (*lines)[2] != kSignature) {
    return faults.NotLegal("expected the signature \"" + std::string(kSignature) + "\" in line 3");
  }
  if (!HasDownloadPair(*lines)) return faults.NotLegal("expected a line \"DE\" with a line \"DI\" behind it");
  for (std::size_t i = 0; i < lines->size(); ++i) {
    const bool isHead = i < kCompactProjectHeadLines;
    if (isHead ? (*lines)[i].size() <= kMaxFrameText : FitsFrame((*lines)[i])) continue;
    const std::string most = std::to_string(kMaxFrameText) + " characters";
    return faults.Damaged(LineError{.line = i + 1}.Place(),
                          isHead ? "expected at most " + most : "expected 1 to " + most + " that a frame can carry");
  }
  CompactProjectFile project;
  project.name = ShownText((*lines)[0]);
  project.model = ShownText((*lines)[1]);
  project.lineCount = lines->size();
  project.endsWithReset = lines->back() == "CCE";
  lines->erase(lines->begin(), lines->begin() + kCompactProjectHeadLines);
  project.commands = *std::move(lines);
  for (const std::string& command : project.commands) {
    if (auto name = ReadCompactName(command)) project.nameInController = *std::move(name);
  }
  project.stamp = StampOf(bytes);
  return project;
}

std::expected<CompactProjectFile, DownloadFileError> ReadCompactProject(const std::filesystem::path& file) {
  const auto bytes = ReadDownloadBytes(file, kLargestFile);
  if (!bytes) return std::unexpected(bytes.error());
  return ParseCompactProject(*bytes, Utf8FromPath(file));
}

}  // namespace kv
