#include "KvTele2/PagesFile.h"

#include <algorithm>
#include <utility>

#include "base/AnsiText.h"
#include "base/LineReader.h"
#include "base/PathText.h"
#include "link/LinkLimits.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

constexpr std::string_view kFormat = "TELEPANEL-PAGES ";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kProject = "project ";
constexpr std::string_view kModel = "model ";

bool IsAnsiProjectName(std::string_view ansi) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  return !ansi.empty() && ansi.size() <= kLongestProjectName && ansi.front() != ' ' && ansi.back() != ' ' &&
         std::ranges::none_of(ansi, isControl);
}

// The rest of the next line behind `name`; the error when the line does not begin so or is not ended.
std::expected<std::string_view, LineError> TakeLine(LineReader& lines, std::string_view name) {
  if (!lines.Next() || !lines.IsEnded()) return lines.Expected("the line \"" + std::string(name) + "...\", whole");
  const std::string_view line = lines.Line();
  if (!line.starts_with(name)) return lines.Expected("a line that begins with \"" + std::string(name) + "\"");
  return line.substr(name.size());
}

std::expected<void, LineError> CheckFormat(LineReader& lines) {
  const auto version = TakeLine(lines, kFormat);
  if (!version) return std::unexpected(version.error());
  if (*version != kVersion) return lines.Expected("version 1, the only one that this program reads");
  return {};
}

std::expected<std::string, LineError> TakeProject(LineReader& lines) {
  const auto project = TakeLine(lines, kProject);
  if (!project) return std::unexpected(project.error());
  if (!IsAnsiProjectName(*project)) return lines.Expected("a project name of 1 to 20 characters");
  return AnsiToUtf8(*project);
}

std::expected<std::string, LineError> TakeModel(LineReader& lines) {
  const auto model = TakeLine(lines, kModel);
  if (!model) return std::unexpected(model.error());
  if (std::ranges::find(SelectableModels(), *model) == SelectableModels().end()) {
    return lines.Expected("the text of a model that this program knows, such as K220-22-R1");
  }
  return std::string(*model);
}

std::expected<void, LineError> CheckWhole(LineReader& lines) {
  const auto check = TakeLine(lines, kCheckWord);
  if (!check) return std::unexpected(check.error());
  if (!IsCheckLine(lines.Line(), lines.Before()))
    return lines.Expected("the check of the lines before: the file is damaged");
  if (!lines.IsAtEnd()) return lines.Expected("the end of the file behind this line");
  return {};
}

}  // namespace

std::expected<PagesFile, LineError> ParsePagesFile(std::string_view bytes) {
  LineReader lines(bytes);
  if (const auto format = CheckFormat(lines); !format) return std::unexpected(format.error());
  const auto project = TakeProject(lines);
  if (!project) return std::unexpected(project.error());
  const auto model = TakeModel(lines);
  if (!model) return std::unexpected(model.error());
  if (const auto whole = CheckWhole(lines); !whole) return std::unexpected(whole.error());
  return PagesFile{*project, *model};
}

std::string PrintPagesFile(const PagesFile& pages) {
  std::string text;
  text.append(kFormat).append(kVersion).append("\r\n");
  text.append(kProject).append(Utf8ToAnsi(pages.project)).append("\r\n");
  text.append(kModel).append(Utf8ToAnsi(pages.model)).append("\r\n");
  return WithCheckLine(std::move(text), "\r\n");
}

bool IsProjectName(std::string_view name) {
  const std::string ansi = Utf8ToAnsi(name);
  return IsAnsiProjectName(ansi) && AnsiToUtf8(ansi) == name;
}

bool IsOfProject(const PagesFile& pages, std::string_view projectName) {
  return AnsiToUtf8(projectName) == pages.project;
}

std::string OtherProjectText(const PagesFile& pages, const std::string& projectName) {
  return "The Telepanel file is for the project " + pages.project + ", but the controller holds " +
         (projectName.empty() ? "none" : projectName) +
         ".\nWhat to do: open the file of the controller's project, or none.";
}

std::expected<PagesFile, FileError> ReadPagesFile(const std::filesystem::path& file) {
  const auto bytes = ReadWholeFile(file, kLargestPagesFile);
  if (!bytes) return std::unexpected(bytes.error());
  auto pages = ParsePagesFile(*bytes);
  if (pages) return *std::move(pages);
  return std::unexpected(pages.error().In(Utf8FromPath(file)));
}

std::expected<void, FileError> SavePagesFile(const std::filesystem::path& file, const PagesFile& pages) {
  return SaveAtomically(file, PrintPagesFile(pages));
}

}  // namespace kv
