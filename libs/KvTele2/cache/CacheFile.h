#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "link/PanelLink.h"
#include "link/VersionInfo.h"

namespace kv::cache {

// Colour cache files (".ktc"): the fonts and images of one controller, so that its screen can be drawn without reading
// them again. A file is an SQLite database; docs/file-formats.md describes it for those who read it with a program of
// their own. It is read and written whole: no other file stands beside it, and a crash leaves the old one or the new
// one.

// Most that one font or image can have, and one file.
inline constexpr std::uint32_t kMostResourceBytes = 16 * 1024 * 1024;
inline constexpr std::size_t kMostCacheBytes = 256 * 1024 * 1024;

// Whose fonts and images these are, as that controller told it: Windows-1252.
struct CacheOwner {
  VersionInfo version{};
  std::uint32_t serialNumber = 0;
  std::string project{};

  bool operator==(const CacheOwner&) const = default;
  // The same controller, whatever O/S and project it had then.
  [[nodiscard]] bool IsController(const CacheOwner& other) const {
    return version.model == other.version.model && serialNumber == other.serialNumber;
  }
};

// Whether a font or image of which `had` is known has the bytes that `wanted` names: a CRC-32 alone can be that of
// other bytes.
[[nodiscard]] bool HasBytesOf(const PanelResource& had, const PanelResource& wanted);

// A font or image as the controller's directory names it, with its bytes: as many as that says, with that CRC-32.
struct CachedResource {
  PanelResource entry{};
  std::string readAt{};  // "2026-11-22 15:30:12 +00:00"
  std::string bytes{};

  bool operator==(const CachedResource&) const = default;
};

// All fonts of a controller, or all images, in the order of its directory.
using CachePart = std::vector<CachedResource>;

// CRC-32 of the directory with these entries, as the controller's description of its panel names it.
[[nodiscard]] std::uint32_t DirectoryCheck(const CachePart& part);

struct CacheContent {
  std::optional<CacheOwner> owner{};  // nothing: the empty cache, which holds nothing else
  std::string savedAt{};              // "2026-11-22 15:30:12 +00:00"
  std::optional<CachePart> fonts{};   // nothing: never imported
  std::optional<CachePart> images{};

  [[nodiscard]] const std::optional<CachePart>& Part(PanelResourceKind kind) const {
    return kind == PanelResourceKind::Font ? fonts : images;
  }
  [[nodiscard]] std::optional<CachePart>& Part(PanelResourceKind kind) {
    return kind == PanelResourceKind::Font ? fonts : images;
  }

  bool operator==(const CacheContent&) const = default;
};

// What is wrong with a file.
enum class CacheFault {
  Missing,     // there is none
  Unreadable,  // the system does not let it be read
  TooLarge,    // more than kMostCacheBytes
  NoCache,     // something else: no database, another program's, or one with more in it than a cache has
  Newer,       // of a version of this format that is yet to come
  Cut,         // its end is missing
  Damaged,     // it is a cache, and not as it was written
};

struct CacheError {
  CacheFault fault = CacheFault::NoCache;
  FileError file{};  // for people: which one, where, what is wrong and what to do

  [[nodiscard]] std::string Text() const { return file.Text(); }
  // An import into this file keeps what of it is whole, and reads the rest again.
  [[nodiscard]] bool CanBeRepaired() const { return fault == CacheFault::Cut || fault == CacheFault::Damaged; }
};

// All of the file, checked to the last byte, or why it is refused; never a part.
[[nodiscard]] std::expected<CacheContent, CacheError> ReadCacheFile(const std::filesystem::path& file);
// The same of its bytes; `name` is for the error.
[[nodiscard]] std::expected<CacheContent, CacheError> ParseCache(std::string_view bytes, const std::string& name);

// The fonts and images in a damaged file whose bytes are whole. Whose they are is not known: nobody may use one that a
// directory of the controller does not name with the same id, length and CRC-32.
struct CacheSalvage {
  CachePart fonts{};
  CachePart images{};
};
[[nodiscard]] CacheSalvage SalvageCache(std::string_view bytes);
[[nodiscard]] CacheSalvage SalvageCacheFile(const std::filesystem::path& file);

// The bytes of a file. The error: this content cannot be one (two resources of one id, bytes that do not fit their
// entry, too much of it).
[[nodiscard]] std::expected<std::string, std::string> CacheBytes(const CacheContent& content);

// Writes the file whole; a failure leaves what stood there.
[[nodiscard]] std::expected<void, FileError> SaveCacheFile(const std::filesystem::path& file,
                                                           const CacheContent& content);

}  // namespace kv::cache
