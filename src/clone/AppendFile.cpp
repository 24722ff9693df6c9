#include "clone/AppendFile.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "base/FilePlatform.h"
#include "base/PathText.h"

#include <fcntl.h>
#ifdef _WIN32
#include <io.h>
#include <sys/stat.h>
#else
#include <unistd.h>
#endif

namespace kv {

namespace fs = std::filesystem;

namespace {

// Never into a file that somebody else has made meanwhile, and not handed on to a program that is started.
std::FILE* OpenNew(const fs::path& file) {
#ifdef _WIN32  // whose "x" not every version of the library knows
  constexpr int kNew = _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT;
  const int descriptor = _wopen(file.c_str(), kNew, _S_IREAD | _S_IWRITE);
  return descriptor < 0 ? nullptr : _wfdopen(descriptor, L"wb");
#else
  return std::fopen(file.c_str(), "wbxe");
#endif
}

bool FlushToDisk(std::FILE* file) {
#ifdef _WIN32
  return _commit(_fileno(file)) == 0;
#else
  return fsync(fileno(file)) == 0;
#endif
}

// The name of a new file is safe only with its folder. Some network drives cannot; that is no failure.
void FlushFolderOf([[maybe_unused]] const fs::path& file) {
#ifndef _WIN32
  const fs::path folder = file.parent_path();
  const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
#endif
}

std::string Because(int number) {
  return " (" + std::generic_category().message(number) + ")";
}

}  // namespace

AppendFile::~AppendFile() {
  Delete();
}

std::unexpected<FileError> AppendFile::Failed(std::string_view what) const {
  return std::unexpected(FileError{Utf8FromPath(mPath), "", std::string(what)});
}

std::expected<void, FileError> AppendFile::Create(const fs::path& file) {
  mPath = file;
  mSize = 0;
  mDigest = Sha256();
  std::error_code error;
  const fs::file_status status = fs::symlink_status(file, error);
  if (fs::exists(status)) {
    if (!fs::is_regular_file(fs::status(file, error))) {
      return Failed("it cannot be written, because it is no plain file; choose another name");
    }
    if (!fs::remove(file, error)) {
      return Failed("the file of this name cannot be deleted (" + SystemMessage(error) +
                    "); check the rights to its folder and that no other program has it open");
    }
  }
  mFile.reset(OpenNew(file));
  if (!mFile) {
    return Failed("it cannot be created" + Because(errno) + "; check that its folder exists and may be written to");
  }
  return {};
}

std::expected<void, FileError> AppendFile::Append(std::string_view bytes) {
  if (!mFile) return Failed("it is not open for writing");
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), mFile.get()) == bytes.size();
  if (!isWritten || std::fflush(mFile.get()) != 0) {
    return Failed("writing it failed" + Because(errno) + "; check that there is room on the disk");
  }
  mSize += bytes.size();
  mDigest.Add(bytes);
  return {};
}

std::expected<void, FileError> AppendFile::Keep() {
  if (!mFile) return Failed("it is not open for writing");
  if (!FlushToDisk(mFile.get())) return Failed("it cannot be made safe on the disk" + Because(errno));
  std::error_code error;
  if (fs::file_size(mPath, error) != mSize || error) {
    return Failed("it was removed or changed while it was written; choose a place that no other program works on");
  }
  if (std::fclose(mFile.release()) != 0) {
    const int why = errno;
    fs::remove(mPath, error);
    return Failed("closing it failed" + Because(why));
  }
  FlushFolderOf(mPath);
  return {};
}

void AppendFile::Delete() {
  if (!mFile) return;
  mFile.reset();
  std::error_code ignored;
  fs::remove(mPath, ignored);
}

}  // namespace kv
