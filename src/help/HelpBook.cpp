#include "help/HelpBook.h"

#include <algorithm>

#include "base/AtomicFile.h"
#include "base/LittleEndian.h"
#include "base/PathText.h"
#include "help/ChmFile.h"
#include "help/HelpTopics.h"
#include "help/HtmlText.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kContentsFile = "contents.hhc";
constexpr const char* kIndexFile = "index.hhk";
constexpr std::size_t kMostEntries = 10000;

class ChmSource final : public HelpSource {
 public:
  explicit ChmSource(ChmFile file) : mFile(std::move(file)) {}
  [[nodiscard]] std::vector<std::string> Names() const override { return mFile.Names(); }
  [[nodiscard]] std::optional<std::string> Read(std::string_view name) const override { return mFile.Read(name); }

 private:
  ChmFile mFile;
};

class FolderSource final : public HelpSource {
 public:
  explicit FolderSource(fs::path folder) : mFolder(std::move(folder)) {}

  [[nodiscard]] std::vector<std::string> Names() const override {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::recursive_directory_iterator at(mFolder, error), end; !error && at != end; at.increment(error)) {
      if (at->is_regular_file(error)) names.push_back(Utf8FromPath(at->path().lexically_relative(mFolder)));
    }
    for (std::string& name : names) std::ranges::replace(name, '\\', '/');
    std::ranges::sort(names);
    return names;
  }

  [[nodiscard]] std::optional<std::string> Read(std::string_view name) const override {
    const fs::path inside = PathFromUtf8(name);
    if (inside.is_absolute() || std::ranges::find(inside, fs::path("..")) != inside.end()) return std::nullopt;
    auto content = ReadWholeFile(mFolder / inside, ChmFile::kLargestObject);
    return content ? std::optional(std::move(*content)) : std::nullopt;
  }

 private:
  fs::path mFolder;
};

// The pages of the table, for a folder, which has no numbers of its own.
std::map<std::int32_t, std::string> NumbersOfTable() {
  std::map<std::int32_t, std::string> numbers;
  for (const HelpTopic& topic : HelpTopics()) {
    numbers[topic.number] = std::string(topic.page) + std::string(kHelpPageEnding);
  }
  return numbers;
}

}  // namespace

std::expected<HelpBook, std::string> HelpBook::Open(const fs::path& chm, const fs::path& pages) {
  auto file = ChmFile::Open(chm);
  if (file) return HelpBook(std::make_unique<ChmSource>(std::move(*file)));
  std::error_code error;
  if (fs::exists(pages / kContentsFile, error)) return HelpBook(std::make_unique<FolderSource>(pages));
  return std::unexpected(file.error() + ". Its pages are not in " + Utf8FromPath(pages) +
                         " either.\nLikely cause: the program was moved without its folder \"help\".\nWhat to do: put "
                         "the folder back beside the program, or install the program again.");
}

HelpBook::HelpBook(std::unique_ptr<HelpSource> source) : mSource(std::move(source)) {
  mContents = ParseSiteMap(mSource->Read(kContentsFile).value_or(""));
  mIndex = ParseSiteMap(mSource->Read(kIndexFile).value_or(""));
  for (Entry& entry : mIndex) entry.level = 0;
  const auto pairs = mSource->Read("#IVB");
  mNumbers = pairs ? ParseMapNumbers(*pairs, mSource->Read("#STRINGS").value_or("")) : NumbersOfTable();
}

std::string HelpBook::PageOf(std::int32_t number) const {
  if (const auto found = mNumbers.find(number); found != mNumbers.end()) return found->second;
  return mContents.empty() ? std::string() : mContents.front().page;
}

std::vector<HelpBook::Entry> ParseSiteMap(std::string_view html) {
  std::vector<HelpBook::Entry> entries;
  HelpBook::Entry entry;
  int depth = 0;
  for (HtmlTags tags(html); const auto tag = tags.Next();) {
    if (tag->name == "UL") {
      ++depth;
    } else if (tag->name == "/UL") {
      depth = std::max(0, depth - 1);
    } else if (tag->name == "PARAM") {
      const std::string name = tag->Value("name");
      if (name == "Name") entry.title = tag->Value("value");
      if (name == "Local") entry.page = tag->Value("value");
    } else if (tag->name == "/OBJECT") {
      entry.level = std::max(0, depth - 1);
      if (!entry.title.empty() && !entry.page.empty()) entries.push_back(entry);
      entry = {};
      if (entries.size() >= kMostEntries) break;
    }
  }
  return entries;
}

std::map<std::int32_t, std::string> ParseMapNumbers(std::string_view pairs, std::string_view texts) {
  constexpr std::size_t kPair = 8;
  std::map<std::int32_t, std::string> numbers;
  const std::size_t length =
      std::min<std::size_t>(LittleEndianAt<std::uint32_t>(pairs, 0) + std::size_t{4}, pairs.size());
  for (std::size_t at = 4; at + kPair <= length; at += kPair) {
    const auto number = static_cast<std::int32_t>(LittleEndianAt<std::uint32_t>(pairs, at));
    const std::size_t begin = LittleEndianAt<std::uint32_t>(pairs, at + 4);
    const std::size_t end = begin < texts.size() ? texts.find('\0', begin) : std::string_view::npos;
    if (end != std::string_view::npos) numbers[number] = texts.substr(begin, end - begin);
  }
  return numbers;
}

}  // namespace kv
