#include "download/CompactOsFile.h"

#include <algorithm>

#include "download/FileFields.h"
#include "download/OsFileName.h"
#include "download/ReadDownload.h"

namespace kv {
namespace {

constexpr std::string_view kMagic = "KOSI";
constexpr std::size_t kHead = 64;
constexpr std::size_t kLengthAt = 12;
constexpr std::size_t kCheckAt = 16;

// The Q50's blocks are addressed with 8 digits, but its flash has no more than this; those of the others with 4.
constexpr std::size_t kLargestQ50Image = std::size_t{1} << 20;
constexpr std::size_t kLargestImage = std::size_t{1} << 16;

// The first 64 bytes: "KOSI", model (3), "v", version (3), build (1), length (4), CRC-32 (4), remark (44).
std::expected<CompactOsHead, DownloadFileError> ParseHead(std::string_view bytes, const FaultsOf& faults) {
  const bool isImage = bytes.size() >= kHead && bytes.starts_with(kMagic) && bytes[7] == 'v';
  if (!isImage) return faults.NotLegal("expected an O/S image, which begins with \"KOSI\", a model and \"v\"");
  const auto name = CompactOsNameIn(std::string(bytes.substr(4, 8)) + ".OSI");
  // A file's name is taken in either case; a boot loader compares its head as it is.
  if (!name || name->model != bytes.substr(4, 3))
    return faults.NotLegal("expected the model Q50, Q51, Q58, PX1 or PR1 and four digits of a version at byte 4");
  return CompactOsHead{name->model, name->number, ShownText(bytes.substr(20, 44))};
}

}  // namespace

std::expected<CompactOsFile, DownloadFileError> ParseCompactOsFile(std::string_view bytes, const std::string& file) {
  const FaultsOf faults(file);
  auto head = ParseHead(bytes, faults);
  if (!head) return std::unexpected(head.error());
  const std::uint32_t length = LittleAt(bytes, kLengthAt, 4);
  if (length != bytes.size()) return faults.Damaged("byte 12", WrongLengthText(length, bytes.size()));
  const std::size_t room = head->model == "Q50" ? kLargestQ50Image : kLargestImage;
  if (length > room || length % kCompactOsBlock != 0) {
    return faults.Damaged("byte 12", "expected whole blocks of 64 bytes, " + std::to_string(room) + " bytes at most");
  }
  if (!HasItsCheck(bytes, kCheckAt)) return faults.Damaged("byte 16", "its CRC-32 does not fit: it was damaged");
  return CompactOsFile{*std::move(head), Bytes(bytes.begin(), bytes.end()), StampOf(bytes)};
}

std::expected<CompactOsFile, DownloadFileError> ReadCompactOsFile(const std::filesystem::path& file) {
  const auto bytes = ReadDownloadBytes(file, kLargestQ50Image);
  if (!bytes) return std::unexpected(bytes.error());
  auto os = ParseCompactOsFile(*bytes, Utf8FromPath(file));
  if (!os) return os;
  const CompactOsName held{os->head.model, os->head.number};
  if (CompactOsNameIn(GetFileName(file)) == held) return os;
  return FaultsOf(Utf8FromPath(file))
      .Damaged("its name", "expected \"" + CompactOsFileName(held.model, held.number) + "\", as what is in it");
}

std::expected<CompactOsHead, DownloadFileError> ReadCompactOsHead(const std::filesystem::path& file) {
  auto stream = OpenForReading(file);
  if (!stream) return std::unexpected(DownloadFileError{DownloadFileFault::Unreadable, stream.error()});
  std::string bytes(kHead, '\0');
  stream->read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(stream->gcount()));
  return ParseHead(bytes, FaultsOf(Utf8FromPath(file)));
}

}  // namespace kv
