#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// Where the bytes of a help come from: a compiled file, or a folder with the same pages.
class HelpSource {
 public:
  virtual ~HelpSource() = default;
  // The names of all files in it, and the content of one; nothing when it is not there or cannot be read.
  [[nodiscard]] virtual std::vector<std::string> Names() const = 0;
  [[nodiscard]] virtual std::optional<std::string> Read(std::string_view name) const = 0;
};

// The help as its window shows it: pages, contents, index, and which page has which map number.
class HelpBook {
 public:
  struct Entry {
    int level = 0;      // in the contents; 0 in the index
    std::string title;  // UTF-8
    std::string page;   // "cloner.html"
  };

  // `chm`, or where that is missing or damaged the pages in the folder `pages`. The error is a sentence for the user
  // that names both.
  [[nodiscard]] static std::expected<HelpBook, std::string> Open(const std::filesystem::path& chm,
                                                                 const std::filesystem::path& pages);
  explicit HelpBook(std::unique_ptr<HelpSource> source);

  [[nodiscard]] const std::vector<Entry>& Contents() const { return mContents; }
  [[nodiscard]] const std::vector<Entry>& Index() const { return mIndex; }
  // The page with this map number; the first page when no page has it.
  [[nodiscard]] std::string PageOf(std::int32_t number) const;
  [[nodiscard]] const std::map<std::int32_t, std::string>& Numbers() const { return mNumbers; }
  // The content of a page or picture by its name.
  [[nodiscard]] std::optional<std::string> Read(std::string_view name) const { return mSource->Read(name); }
  [[nodiscard]] std::vector<std::string> Names() const { return mSource->Names(); }

 private:
  std::unique_ptr<HelpSource> mSource;
  std::vector<Entry> mContents;
  std::vector<Entry> mIndex;
  std::map<std::int32_t, std::string> mNumbers;
};

// The entries of a contents or index file (.hhc, .hhk): each object with a name and a page; how deep the lists around
// it are is its level. For tests, too.
[[nodiscard]] std::vector<HelpBook::Entry> ParseSiteMap(std::string_view html);

// Map numbers to pages, as the compiled file keeps them: pairs of a number and a place among its texts.
[[nodiscard]] std::map<std::int32_t, std::string> ParseMapNumbers(std::string_view pairs, std::string_view texts);

}  // namespace kv
