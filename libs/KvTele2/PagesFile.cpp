#include "KvTele2/PagesFile.h"

#include <algorithm>

#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "base/Numbers.h"
#include "base/PathText.h"
#include "models/ModelCatalogue.h"

namespace kv {
namespace {

constexpr std::string_view kFormat = "TELEPANEL-PAGES ";
constexpr std::string_view kVersion = "1";
constexpr std::string_view kProject = "project ";
constexpr std::string_view kModel = "model ";
constexpr std::string_view kCheck = "check ";
constexpr std::size_t kCheckDigits = 8;

bool IsAnsiProjectName(std::string_view ansi) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  return !ansi.empty() && ansi.size() <= kLongestProjectName && ansi.front() != ' ' && ansi.back() != ' ' &&
         std::ranges::none_of(ansi, isControl);
}

// Takes the lines of a file one after the other and remembers where it is.
class LineReader {
 public:
  explicit LineReader(std::string_view bytes) : mBytes(bytes) {}

  // The rest of the next line behind `name`; the fault when the line does not begin so or is not ended.
  std::expected<std::string_view, PagesFault> Take(std::string_view name) {
    ++mLine;
    mStart = mNext;
    const std::size_t end = mBytes.find('\n', mNext);
    if (end == std::string_view::npos) return Expected("the line \"" + std::string(name) + "...\", whole");
    std::string_view line = mBytes.substr(mNext, end - mNext);
    mNext = end + 1;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.starts_with(name)) return Expected("a line that begins with \"" + std::string(name) + "\"");
    return line.substr(name.size());
  }

  [[nodiscard]] std::string_view BeforeLine() const { return mBytes.substr(0, mStart); }
  [[nodiscard]] bool IsAtEnd() const { return mNext == mBytes.size(); }

  [[nodiscard]] std::unexpected<PagesFault> Expected(const std::string& what) const {
    return std::unexpected(PagesFault{mLine, "expected " + what});
  }

 private:
  std::string_view mBytes;
  std::size_t mStart = 0;
  std::size_t mNext = 0;
  std::size_t mLine = 0;
};

std::expected<void, PagesFault> CheckFormat(LineReader& lines) {
  const auto version = lines.Take(kFormat);
  if (!version) return std::unexpected(version.error());
  if (*version != kVersion) return lines.Expected("version 1, the only one that this program reads");
  return {};
}

std::expected<std::string, PagesFault> TakeProject(LineReader& lines) {
  const auto project = lines.Take(kProject);
  if (!project) return std::unexpected(project.error());
  if (!IsAnsiProjectName(*project)) return lines.Expected("a project name of 1 to 20 characters");
  return AnsiToUtf8(*project);
}

std::expected<std::string, PagesFault> TakeModel(LineReader& lines) {
  const auto model = lines.Take(kModel);
  if (!model) return std::unexpected(model.error());
  if (std::ranges::find(SelectableModels(), *model) == SelectableModels().end()) {
    return lines.Expected("the text of a model that this program knows, such as K220-22-R1");
  }
  return std::string(*model);
}

std::expected<void, PagesFault> CheckWhole(LineReader& lines) {
  const auto digits = lines.Take(kCheck);
  if (!digits) return std::unexpected(digits.error());
  const auto check = digits->size() == kCheckDigits ? ParseHex(*digits) : std::nullopt;
  if (check != Crc32(lines.BeforeLine())) return lines.Expected("the check of the lines before: the file is damaged");
  if (!lines.IsAtEnd()) return lines.Expected("the end of the file behind this line");
  return {};
}

}  // namespace

std::expected<PagesFile, PagesFault> ParsePagesFile(std::string_view bytes) {
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
  const std::string check = ToHex(Crc32(text), kCheckDigits);
  return text.append(kCheck).append(check).append("\r\n");
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
  const PagesFault& fault = pages.error();
  return std::unexpected(FileError{Utf8FromPath(file), "line " + std::to_string(fault.line), fault.what});
}

std::expected<void, FileError> SavePagesFile(const std::filesystem::path& file, const PagesFile& pages) {
  return SaveAtomically(file, PrintPagesFile(pages));
}

}  // namespace kv
