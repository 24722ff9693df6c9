#include "base/AtomicFile.h"

#include <algorithm>
#include <atomic>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/FileToReplace.h"
#include "base/PathText.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

std::unexpected<FileError> Failed(const fs::path& file, std::string what) {
  return std::unexpected(FileError{.file = Utf8FromPath(file), .place = {}, .what = std::move(what)});
}

std::unexpected<FileError> CannotSave(const fs::path& file, const std::error_code& error) {
  const char* const cure = MayBeHeldByAnother(error)
                               ? "); close it in other programs, and check that its folder may be written to"
                               : "); check that its folder exists, may be written to and has room";
  return Failed(file, "it cannot be saved (" + SystemMessage(error) + cure);
}

std::unexpected<FileError> CannotOpen(const fs::path& file) {
  const std::error_code error = ErrorOfOpening(file);
  if (!error) return Failed(file, "it could not be opened at first; try again");
  const char* const cure =
      IsHeldByAnother(error) ? "); another program has it open: close it there" : "); check the rights to it";
  return Failed(file, "it cannot be opened (" + SystemMessage(error) + cure);
}

// Writes a file of a free name in the folder of `file`, and returns its path.
std::expected<fs::path, std::error_code> WriteBeside(const fs::path& file, std::string_view content) {
  constexpr int kTries = 100;  // names that an earlier crash may have left
  static std::atomic<unsigned> counter = 0;
  std::error_code error;
  for (int i = 0; i < kTries; ++i) {
    const fs::path temporary =
        file.parent_path() / (".save-" + std::to_string(ProcessNumber()) + "-" + std::to_string(counter++) + ".tmp");
    error = WriteNewFile(temporary, file, content);
    if (!error) return temporary;
    if (error != std::errc::file_exists) break;
  }
  return std::unexpected(error);
}

}  // namespace

std::string FileError::Text() const {
  return file + (place.empty() ? "" : ", " + place) + ": " + what;
}

std::expected<void, FileError> SaveAtomically(const fs::path& file, std::string_view content) {
  const auto target = BehindLinks(file);
  if (!target) return CannotSave(file, target.error());
  if (std::string why = WhyNotReplaceable(*target); !why.empty()) return Failed(file, std::move(why));

  const auto temporary = WriteBeside(*target, content);
  if (!temporary) return CannotSave(file, temporary.error());
  if (const std::error_code error = ReplaceFileWith(*target, *temporary)) {
    std::error_code ignored;
    fs::remove(*temporary, ignored);
    return CannotSave(file, error);
  }
  return {};
}

std::expected<std::ifstream, FileError> OpenForReading(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) return Failed(file, "it does not exist");
  if (!fs::exists(status))
    return Failed(file, "it cannot be read (" + SystemMessage(error) + "); check the rights to its folder");
  if (!fs::is_regular_file(status))
    return Failed(file, "it cannot be read, because it is no plain file");  // could block

  std::ifstream stream(file, std::ios::binary);
  if (!stream) return CannotOpen(file);
  return stream;
}

std::expected<std::string, FileError> ReadWholeFile(const fs::path& file, std::size_t limit) {
  auto opened = OpenForReading(file);
  if (!opened) return std::unexpected(std::move(opened.error()));
  std::ifstream& stream = *opened;
  constexpr std::size_t kPiece = std::size_t{64} * 1024;
  std::string content;
  while (stream && content.size() <= limit) {
    const std::size_t before = content.size();
    content.resize(before + std::min(kPiece, limit - before + 1));  // one more shows that the file is too large
    stream.read(content.data() + before, static_cast<std::streamsize>(content.size() - before));
    content.resize(before + static_cast<std::size_t>(stream.gcount()));
  }
  if (stream.bad()) return Failed(file, "reading it failed in the middle");
  if (content.size() > limit) return Failed(file, "it is larger than " + std::to_string(limit) + " bytes");
  return content;
}

}  // namespace kv
