#include "download/DownloadFile.h"

#include <algorithm>
#include <string>

#include "base/PathText.h"
#include "base/Texts.h"
#include "download/ReadDownload.h"

namespace kv {
namespace {

using ReadResult = std::expected<DownloadFile, DownloadFileError>;

template <auto Reader>
ReadResult ReadWith(const std::filesystem::path& file) {
  auto read = Reader(file);
  if (!read) return std::unexpected(std::move(read.error()));
  return DownloadFile(*std::move(read));
}

struct Kind {
  std::string_view extension;
  DownloadFileKind kind;
  ReadResult (*read)(const std::filesystem::path& file);
};

constexpr Kind kKinds[] = {
    {".DAI", DownloadFileKind::AurexProject, ReadWith<ReadAurexProject>},
    {".D50", DownloadFileKind::CompactProject, ReadWith<ReadCompactProject>},
    {".KOS", DownloadFileKind::AurexOs, ReadWith<ReadAurexOsFile>},
    {".KFT", DownloadFileKind::Fonts, ReadWith<ReadFontsFile>},
    {".OSI", DownloadFileKind::CompactOs, ReadWith<ReadCompactOsFile>},
};

const Kind* FindKind(const std::filesystem::path& file) {
  const auto kind = std::ranges::find(kKinds, UpperCased(Utf8FromPath(file.extension())), &Kind::extension);
  return kind == std::end(kKinds) ? nullptr : &*kind;
}

}  // namespace

std::optional<DownloadFileKind> KindOfDownloadFile(const std::filesystem::path& file) {
  const Kind* kind = FindKind(file);
  return kind == nullptr ? std::nullopt : std::optional(kind->kind);
}

ReadResult ReadDownloadFile(const std::filesystem::path& file) {
  const Kind* named = FindKind(file);
  ReadResult read = named != nullptr
                        ? named->read(file)
                        : FaultsOf(Utf8FromPath(file)).NotLegal("expected a file .dai, .d50, .kos, .kft or .OSI");
  if (read || read.error().fault != DownloadFileFault::NotLegal) return read;
  for (const Kind& other : kKinds) {
    if (&other == named) continue;
    if (auto found = other.read(file)) return found;
  }
  return read;
}

}  // namespace kv
