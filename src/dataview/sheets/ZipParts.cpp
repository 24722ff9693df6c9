#include "dataview/sheets/ZipParts.h"

#include <zip.h>

#include "base/ScopeGuard.h"
#include "dataview/sheets/SheetBuilder.h"

namespace kv {
namespace {

// The grid of the largest model takes 9 MB; parsing takes up to 16 times as much memory.
constexpr std::size_t kLargestPart = std::size_t{24} * 1024 * 1024;
constexpr std::size_t kPiece = std::size_t{64} * 1024;

std::unexpected<SheetError> NotReadable(std::string place, const std::string& why) {
  return SheetFailure(std::move(place), "the file is damaged or protected (" + why + ")");
}

std::string Why(zip_error_t* error) {
  std::string why = zip_error_strerror(error);
  zip_error_fini(error);
  return why;
}

}  // namespace

struct ZipParts::Archive {
  explicit Archive(zip_t* opened) : zip(opened) {}
  ~Archive() { zip_discard(zip); }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;

  zip_t* zip;
};

ZipParts::ZipParts(std::unique_ptr<Archive> archive) : mArchive(std::move(archive)) {}
ZipParts::ZipParts(ZipParts&&) noexcept = default;
ZipParts& ZipParts::operator=(ZipParts&&) noexcept = default;
ZipParts::~ZipParts() = default;

bool ZipParts::IsZip(std::string_view content) {
  return content.starts_with("PK\x03\x04");
}

std::expected<ZipParts, SheetError> ZipParts::Open(std::string_view content) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(content.data(), content.size(), 0, &error);
  if (source == nullptr) return NotReadable("archive", Why(&error));
  zip_t* zip = zip_open_from_source(source, ZIP_RDONLY, &error);
  if (zip == nullptr) {
    zip_source_free(source);
    return NotReadable("archive", Why(&error));
  }
  return ZipParts(std::make_unique<Archive>(zip));
}

bool ZipParts::Has(const std::string& name) const {
  return zip_name_locate(mArchive->zip, name.c_str(), ZIP_FL_NOCASE) >= 0;
}

std::expected<std::string, SheetError> ZipParts::Read(const std::string& name) const {
  zip_file_t* part = zip_fopen(mArchive->zip, name.c_str(), ZIP_FL_NOCASE);
  if (part == nullptr) return NotReadable(name, zip_strerror(mArchive->zip));
  const ScopeGuard close([part] { zip_fclose(part); });
  std::string content;
  while (content.size() <= kLargestPart) {
    const std::size_t before = content.size();
    content.resize(before + kPiece);
    const zip_int64_t got = zip_fread(part, content.data() + before, kPiece);
    if (got < 0) return NotReadable(name, zip_error_strerror(zip_file_get_error(part)));
    content.resize(before + static_cast<std::size_t>(got));
    if (got == 0) return content;
  }
  return SheetFailure(name, "it is larger than 24 MB when it is unpacked; keep only the sheet of values");
}

}  // namespace kv
