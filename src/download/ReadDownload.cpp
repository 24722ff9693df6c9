#include "download/ReadDownload.h"

#include <system_error>

#include "base/AtomicFile.h"
#include "base/Crc32.h"
#include "download/FileFields.h"

namespace kv {

namespace fs = std::filesystem;

std::expected<std::string, DownloadFileError> ReadDownloadBytes(const fs::path& file, std::size_t limit) {
  std::error_code error;
  if (fs::is_regular_file(file, error) && fs::file_size(file, error) > limit && !error) {
    return FaultsOf(Utf8FromPath(file)).NotLegal("it is larger than any file of its kind");
  }
  auto bytes = ReadWholeFile(file, limit);
  if (!bytes) return std::unexpected(DownloadFileError{DownloadFileFault::Unreadable, bytes.error()});
  return *std::move(bytes);
}

bool HasItsCheck(std::string_view bytes, std::size_t offset) {
  constexpr std::size_t kSize = 4;
  const std::uint32_t head = Crc32(bytes.substr(0, offset));
  const std::uint32_t withoutCheck = Crc32(std::string(kSize, '\0'), head);
  return Crc32(bytes.substr(offset + kSize), withoutCheck) == LittleAt(bytes, offset, kSize);
}

std::string WrongLengthText(std::uint64_t said, std::uint64_t found) {
  return "it says that it has " + std::to_string(said) + " bytes, and has " + std::to_string(found) +
         (found < said ? ": it was cut" : "");
}

}  // namespace kv
