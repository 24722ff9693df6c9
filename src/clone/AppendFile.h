#pragma once

#include <cstdint>
#include <cstdio>
#include <expected>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "base/AtomicFile.h"
#include "digest/Sha256.h"

namespace kv {

// A file that is written piece by piece and is either kept or deleted. For files of a size that must not stand in
// memory and whose order of writing is settled; all others are saved whole (base/AtomicFile.h).
class AppendFile {
 public:
  AppendFile() = default;
  ~AppendFile();
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;

  // Deletes a plain file of that name and makes a new, empty one. What is no plain file is refused and left alone.
  [[nodiscard]] std::expected<void, FileError> Create(const std::filesystem::path& file);

  // Hands the bytes to the system at once, so that a full disk shows here.
  [[nodiscard]] std::expected<void, FileError> Append(std::string_view bytes);

  // Closes the file and leaves it there, safe on the disk. Fails when it cannot be made safe, and when it has been
  // removed or changed by others meanwhile.
  [[nodiscard]] std::expected<void, FileError> Keep();

  // Of the bytes that were handed over, whatever the disk made of them.
  [[nodiscard]] std::uint64_t Size() const { return mSize; }
  [[nodiscard]] std::string Digest() const { return mDigest.Hex(); }

  // Closes the file and deletes it. Does nothing when this object made none, or has kept it.
  void Delete();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  [[nodiscard]] std::unexpected<FileError> Failed(std::string_view what) const;

  std::filesystem::path mPath;
  std::unique_ptr<std::FILE, Close> mFile;
  std::uint64_t mSize = 0;
  Sha256 mDigest;
};

}  // namespace kv
